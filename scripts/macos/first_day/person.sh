# shellcheck shell=bash
# What takes a person: sleep, a locked screen, another user, and the grant taken away. Sourced by first-day.
# shellcheck disable=SC2034,SC2154

# Whether a lone Option tap still arms. The person does it in Excel, or in the stand-in where there is none.
still_arms() {
  local from
  from=$(log_length)
  ask "Bring Excel (or the stand-in) to the front, tap Option once, press Escape, and come back here."
  expect_log "$from" 2 "armed: Option tapped in Excel"
}

about_sleep="Puts the Mac to sleep; after it woke, a tap of Option must still arm. (A person.)"
step_sleep() {
  need_keyvora
  ask "The Mac will sleep now. Wake it after a minute."
  do_run pmset sleepnow
  still_arms
}

about_lock="The screen is locked and unlocked; a tap of Option must still arm. (A person.)"
step_lock() {
  need_keyvora
  ask "Lock the screen (Control-Command-Q), and unlock it."
  still_arms
}

about_user_switch="Another user logs in and out again by fast user switching; a tap of Option must still arm. (A person.)"
step_user_switch() {
  need_keyvora
  ask "Switch to another user, and back."
  still_arms
}

about_revoke="The grant is taken away while keyvora runs, and typing must go on. LAST: the keyboard may hang until keyvora is ended; keep the mouse at hand. (A person.)"
step_revoke() {
  local happened
  need_keyvora
  ask "Save your work. Then switch keyvora off in System Settings, Privacy & Security, Accessibility."
  ask "Type a sentence into any window. If nothing arrives, quit keyvora from its menu with the mouse."
  do_run bash -c 'pgrep -x keyvora && echo "keyvora still runs" || echo "keyvora was ended"'
  if [[ -z $dry_run ]]; then
    printf '\n>>> What happened, in one line? '
    read -r happened </dev/tty
    echo "The person says: $happened"
  fi
  quit_keyvora
}
