# Completion of keyvora-mappings for bash.
_keyvora_mappings() {
  local word=${COMP_WORDS[COMP_CWORD]} command=${COMP_WORDS[1]-} options=
  COMPREPLY=()
  if ((COMP_CWORD == 1)); then
    mapfile -t COMPREPLY < <(compgen -W 'check explain list rehearse use diff update habits cheatsheet doctor schema help version' -- "$word")
    return
  fi
  case $command in
    check) options='--layout --watch --strict --json' ;;
    list) options='--tab' ;;
    rehearse) options='--all' ;;
    diff | update) options='--from' ;;
    use)
      mapfile -t COMPREPLY < <(compgen -W 'calc gnumeric excel' -- "$word")
      return
      ;;
    habits) options='--log' ;;
    cheatsheet) options='--html --markdown --open' ;;
    help)
      mapfile -t COMPREPLY < <(compgen -W 'check explain list rehearse use diff update habits cheatsheet doctor schema' -- "$word")
      return
      ;;
    schema | version) return ;;
  esac
  if [[ ${COMP_WORDS[COMP_CWORD - 1]} == --layout ]]; then
    mapfile -t COMPREPLY < <(compgen -W 'us gb fr de ch es it ru' -- "$word")
  elif [[ ${COMP_WORDS[COMP_CWORD - 1]} == --from ]]; then
    mapfile -t COMPREPLY < <(compgen -W 'calc gnumeric excel' -- "$word")
  elif [[ $word == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$options --help" -- "$word")
  elif [[ ${COMP_WORDS[COMP_CWORD - 1]} != --tab ]] && ! [[ $command == explain && $COMP_CWORD -eq 2 ]]; then
    mapfile -t COMPREPLY < <(compgen -f -- "$word")
  fi
}
complete -o filenames -F _keyvora_mappings keyvora-mappings
