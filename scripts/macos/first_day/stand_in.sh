# shellcheck shell=bash
# A session against the stand-in for Excel. Sourced by first-day.
# shellcheck disable=SC2034,SC2154

tools=$project/build/release/tests/macos/stand_in

# Types key codes as a hand would, with our own tool where the system lets it and by the person's hand where not.
# usage: type_keys "what a person should type" KEYCODE...
type_keys() {
  local what=$1 status=0
  shift
  do_run "$tools/stand-in-typist" "$@" || status=$?
  if ((status == 77)); then
    [[ -z $unattended ]] || leave_out "nobody may type here: neither the tool nor a person"
    # A person's keys go to the window in front, which must be the stand-in's and not the terminal's.
    echo ">>> In the next ten seconds: click the window \"Stand-in for Excel\" and type: $what"
    sleep 10
    return 0
  fi
  return "$status"
}

# Puts the user's own document aside for as long as the step lasts.
borrow_mappings() {
  kept=$evidence/mappings.kept.json
  do_run mkdir -p "$(dirname "$mappings")"
  [[ ! -e $mappings ]] || do_run cp -p "$mappings" "$kept"
  do_run cp "$project/tests/macos/stand_in/mappings.json" "$mappings"
}

return_mappings() {
  if [[ -e $kept ]]; then do_run cp -p "$kept" "$mappings"; else do_run rm -f "$mappings"; fi
}

start_stand_in() {
  stand_in=$evidence/stand-in/Microsoft\ Excel.app
  record=$evidence/stand-in.record
  do_run mkdir -p "$evidence/stand-in"
  do_run ditto "$tools/excel-stand-in.app" "$stand_in"
  do_run codesign --force --sign - "$stand_in"
  do_run open -n -F "$stand_in" --args --record "$record"
  wait_for 15 grep -q ready "$record" || {
    echo "FAILED: the stand-in did not start within 15 s"
    return 1
  }
}

stop_stand_in() {
  do_run pkill -x excel-stand-in || true
  # The system remembers where an application with this identifier was.
  do_run /System/Library/Frameworks/CoreServices.framework/Frameworks/LaunchServices.framework/Support/lsregister \
    -u "$stand_in" || true
  do_run rm -rf "$evidence/stand-in"
}

# The stand-in has Excel's bundle identifier: with the real Excel installed, either could be started.
real_excel() { [[ -d "/Applications/Microsoft Excel.app" ]]; }

about_stand_in="Starts an application of ours with Excel's bundle identifier, fires one sequence of each kind at it, and judges what arrived there. Your mappings.json is put aside meanwhile. Left out where Excel is installed."
step_stand_in() {
  local from
  [[ -n $dry_run ]] || ! real_excel || leave_out "Excel is installed: the stand-in bears its identifier"
  [[ -n $dry_run || -d $tools/excel-stand-in.app ]] || leave_out "the stand-in is not built: the step build makes it"
  need_keyvora
  tap_is_in || leave_out "keyvora has no tap: the step grant gives it one"
  from=$(log_length)
  borrow_mappings
  trap 'stop_stand_in; return_mappings' EXIT
  expect_log "$from" 5 "mappings reloaded, 5 sequences"
  start_stand_in
  type_keys "Option, then K" 58 40
  wait_for 5 log_since "$from" "K  Keystroke" || true
  type_keys "Option, then T" 58 17
  wait_for 5 log_since "$from" "T  Key tips" || true
  type_keys "Option, then M" 58 46
  wait_for 5 log_since "$from" "M  Menu" || true
  type_keys "Option, then S (allow what the system asks)" 58 1
  wait_for 30 log_since "$from" "S  Script" || true
  type_keys "Option, then X" 58 7
  wait_for 5 log_since "$from" "no sequence X" || true
  # Last: the dialog may hold keyvora for seconds.
  type_keys "Option, then D" 58 2
  wait_for 15 grep -q "dialog opens" "$record" || true
  type_keys "Return" 36
  wait_for 15 grep -q "dialog closed" "$record" || true
  wait_for 15 log_since "$from" "D  Dialog" || true
  [[ -n $dry_run ]] || tail -n "+$((from + 1))" "$log" >"$evidence/stand-in.log"
  do_run python3 "$steps_folder/judge.py" stand-in "$record" "$evidence/stand-in.log"
}
