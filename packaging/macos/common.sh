# shellcheck shell=bash disable=SC2034
# Shared by the scripts of this folder; sourced, not run.

die() {
  printf '%s: %s\n' "$(basename "$0")" "$*" >&2
  exit 1
}

# need NAME...: the commands that the script cannot do without.
need() {
  local name
  for name in "$@"; do
    command -v "$name" >/dev/null || die "$name is missing; it comes with Xcode's command line tools (xcode-select --install)"
  done
}

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
entitlements=$here/keyvora.entitlements

# has_identity NAME: whether the keychain has a valid certificate of that name for signing code.
has_identity() { [[ $(security find-identity -v -p codesigning) == *"\"$1\""* ]]; }

# app_version APP KEY: a value of the bundle's information dictionary.
app_version() { plutil -extract "$2" raw -o - "$1/Contents/Info.plist"; }

# need_sdk: ends the script unless the SDK declares what the program calls; the newest is -[NSApplication activate].
need_sdk() {
  local needed=14 found
  found=$(xcrun --sdk macosx --show-sdk-version)
  ((${found%%.*} >= needed)) ||
    die "the SDK is that of macOS $found; keyvora takes $needed or later: install a newer Xcode, or choose it with xcode-select"
}
