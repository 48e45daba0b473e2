# Sourced by the project's commands: where the project is, which system this is, how to speak.
# shellcheck shell=bash

project=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
# shellcheck disable=SC2034  # for the scripts that source this file
readonly project

# The folder in scripts/ that holds what differs between systems.
system() {
  case $(uname -s) in
    Linux) echo linux ;;
    Darwin) echo macos ;;
    *) die "keyvora is built on Debian and macOS; this is $(uname -s)." ;;
  esac
}

# How many processors this machine has.
processors() { getconf _NPROCESSORS_ONLN; }

# One heading of a command's output.
step() { printf '\n==> %s\n' "$*"; }

# The one way a command ends early: why, and what to do.
die() {
  printf '%s: %s\n' "$(basename "$0")" "$*" >&2
  exit 1
}
