# shellcheck shell=bash
# How a step is announced, run, left out and written down. Sourced by first-day, whose variables it reads.
# shellcheck disable=SC2034,SC2154

# The description of a step: the text after "about_NAME=" in the file that defines it.
about() {
  local text=about_$1
  printf '%s' "${!text}"
}

known_step() {
  local name
  for name in "${all_steps[@]}"; do [[ $name != "$1" ]] || return 0; done
  die "there is no step $1; see --list"
}

# is_in NAME LIST...
is_in() {
  local wanted=$1 name
  shift
  for name in "$@"; do [[ $name != "$wanted" ]] || return 0; done
  return 1
}

start_evidence() {
  started=$(date +%Y%m%d-%H%M%S)
  evidence=$(mktemp -d "${TMPDIR:-/tmp}/keyvora-first-day.XXXXXX") || die "no folder for the evidence can be made"
  results=$evidence/results.txt
  : >"$results"
  application=$project/build/release/app/keyvora.app
  log=$HOME/Library/Logs/keyvora.log
  mappings="$HOME/Library/Application Support/keyvora/mappings.json"
}

# One line of results: passed, failed or left out, the step, and why.
note_result() { printf '%s\t%s\t%s\n' "$1" "$2" "${3:-}" | tee -a "$results"; }

# Runs one step in a shell of its own, so that nothing it sets stays; its output goes to the archive too.
run_step() {
  local name=$1 status
  if ((${#only[@]} > 0)) && ! is_in "$name" "${only[@]}"; then return; fi
  if ((${#skip[@]} > 0)) && is_in "$name" "${skip[@]}"; then
    note_result "left out" "$name" "asked for"
    return
  fi
  if [[ -n $unattended ]] && needs_person "$name"; then
    note_result "left out" "$name" "needs a person"
    return
  fi
  step "$name: $(about "$name")"
  (
    set -e
    "step_$name"
  ) 2>&1 | tee "$evidence/$name.txt"
  status=${PIPESTATUS[0]}
  case $status in
    0) note_result "$([[ -n $dry_run ]] && echo shown || echo passed)" "$name" ;;
    77) note_result "left out" "$name" "$(tail -n 1 "$evidence/$name.txt")" ;;
    *) note_result failed "$name" "$(tail -n 1 "$evidence/$name.txt")" ;;
  esac
}

# A step whose description says so. Another command may stand in for the person who gives the grant.
needs_person() {
  [[ $1 != grant || -z ${KEYVORA_GRANT_COMMAND:-} ]] && [[ $(about "$1") == *"(A person.)"* ]]
}

# The rest of a step that cannot be done here. usage: leave_out WHY
leave_out() {
  echo "$*"
  exit 77
}

# Runs a command and shows it; with --dry-run only shows it.
do_run() {
  printf '+ %s\n' "$(printf '%q ' "$@")"
  [[ -n $dry_run ]] || "$@"
}

# Asks the person at the keyboard for one thing, and waits until it is done.
ask() {
  printf '\n>>> %s\n>>> Then press Return. ' "$*"
  if [[ -n $dry_run ]]; then
    echo
    return
  fi
  read -r </dev/tty
}

# wait_for SECONDS COMMAND...: until it succeeds.
wait_for() {
  local limit=$((SECONDS + $1))
  shift
  [[ -z $dry_run ]] || return 0
  until "$@"; do
    ((SECONDS < limit)) || return 1
    sleep 0.2
  done
}

# How many lines the log has now; log_since N TEXT: whether a later one holds the text.
log_length() { if [[ -e $log ]]; then wc -l <"$log"; else echo 0; fi; }
log_since() { [[ -e $log ]] && tail -n "+$(($1 + 1))" "$log" | grep -qF -- "$2"; }

# expect_log FROM SECONDS TEXT
expect_log() {
  if [[ -n $dry_run ]]; then
    echo "(waits up to $2 s until the log says: $3)"
  elif wait_for "$2" log_since "$1" "$3"; then
    echo "ok: the log says: $3"
  else
    echo "FAILED: within $2 s the log did not say: $3"
    return 1
  fi
}

quit_keyvora() {
  do_run osascript -e 'tell application id "org.keyvora.keyvora" to quit' || true
  wait_for 10 bash -c '! pgrep -x keyvora >/dev/null' || do_run pkill -x -U "$(id -u)" keyvora
}

# keyvora must be built and running, with the grant.
need_keyvora() {
  [[ -n $dry_run || -d $application ]] || leave_out "keyvora.app is not built: the step build makes it"
  [[ -n $dry_run ]] || pgrep -x keyvora >/dev/null || do_run open "$application"
}

# Whether keyvora's tap is installed, according to the end of the log.
tap_is_in() {
  [[ -n $dry_run || $(grep -E 'tap (not )?installed' "$log" 2>/dev/null | tail -n 1) == *"tap installed"* ]]
}

finish_evidence() {
  step "The results"
  cat "$results"
  if [[ -n $dry_run ]]; then
    rm -rf "$evidence"
    exit 0
  fi
  [[ ! -e $log ]] || cp "$log" "$evidence/keyvora.log"
  archive=${archive:-$PWD/first-day-$started.tar.gz}
  tar -czf "$archive" -C "$(dirname "$evidence")" "$(basename "$evidence")" || die "the archive $archive cannot be written"
  echo "The archive: $archive"
  ! grep -q '^failed' "$results"
}
