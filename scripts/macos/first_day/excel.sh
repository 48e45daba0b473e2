# shellcheck shell=bash
# The real Excel, where it is installed, and editors that save the document. Sourced by first-day.
# shellcheck disable=SC2034,SC2154

about_excel="Opens Excel with an empty workbook, writes down its whole menu tree, holds the default document's paths against it, and presses each path once, timing it; Escape follows each. Left out where Excel is not installed. (A person.)"
step_excel() {
  local process path titles
  [[ -n $dry_run ]] || real_excel || leave_out "Excel is not installed"
  [[ -n $dry_run || -x $tools/menu-tree ]] || leave_out "menu-tree is not built: the step build makes it"
  ask "Close every workbook that matters. The terminal needs the Accessibility permission for this step."
  do_run open -a "Microsoft Excel"
  ask "Make an empty workbook."
  if [[ -n $dry_run ]]; then
    do_run "$tools/menu-tree" PID
    return 0
  fi
  process=$(pgrep -x "Microsoft Excel" | head -n 1)
  "$tools/menu-tree" "$process" >"$evidence/excel-menus.txt"
  python3 "$steps_folder/judge.py" menus "$evidence/excel-menus.txt" "$project/resources/mappings.json" || echo "see above"
  python3 "$steps_folder/judge.py" paths "$project/resources/mappings.json" | while IFS= read -r path; do
    IFS=$'\t' read -r -a titles <<<"$path"
    printf '%s\t%s\n' "$path" "$("$tools/menu-tree" "$process" "${titles[@]}" 2>&1 </dev/null)"
    "$tools/stand-in-typist" 53 53 || true
  done | tee "$evidence/excel-presses.txt"
  ! grep -q "no menu item" "$evidence/excel-presses.txt" || {
    echo "FAILED: items of the default document are missing; see excel-presses.txt"
    return 1
  }
}

# One save, and the reload that must follow. usage: saved_by EDITOR COMMAND...
saved_by() {
  local editor=$1 from
  shift
  from=$(log_length)
  do_run "$@"
  expect_log "$from" 3 "mappings reloaded" || {
    echo "after a save by $editor"
    return 1
  }
}

about_editors="Saves mappings.json unchanged with three editors (vim, ed, TextEdit) and by a rename, and waits for each reload. The document is put back as it was."
step_editors() {
  need_keyvora
  kept=$evidence/mappings.before.json
  [[ -n $dry_run || -e $mappings ]] || leave_out "there is no mappings.json yet"
  do_run cp -p "$mappings" "$kept"
  trap return_mappings EXIT
  saved_by vim vim -es -u NONE -c 'wq!' "$mappings"
  # shellcheck disable=SC2016
  saved_by ed bash -c 'printf "w\nq\n" | ed -s "$1"' ed "$mappings"
  saved_by TextEdit osascript -e 'on run argv' -e 'tell application "TextEdit"' \
    -e 'set opened to open (POSIX file (item 1 of argv))' -e 'save opened' -e 'close opened' -e 'end tell' -e 'end run' "$mappings"
  do_run cp "$mappings" "$mappings.new"
  saved_by "a rename" mv "$mappings.new" "$mappings"
}
