# Sourced by the project's commands: the project's folder, the system, output functions.
# shellcheck shell=bash

project=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
# shellcheck disable=SC2034  # for the scripts that source this file
readonly project

# The folder in scripts/ with the parts for this system.
system() {
  case $(uname -s) in
    Linux) echo linux ;;
    Darwin) echo macos ;;
    *) die "keyvora is built on Debian and macOS; this is $(uname -s)." ;;
  esac
}

# The number of processors of this machine.
processors() { getconf _NPROCESSORS_ONLN; }

# Prints a heading.
step() { printf '\n==> %s\n' "$*"; }

# Ends a command early: prints the reason and what to do.
die() {
  printf '%s: %s\n' "$(basename "$0")" "$*" >&2
  exit 1
}
