# shellcheck shell=bash
# keyvora.app itself: built, signed, launched, granted, asked for updates. Sourced by first-day.
# shellcheck disable=SC2034,SC2154

about_build="Builds keyvora.app for arm64 and x86_64, optimised, and what the later steps need, in build/release."
step_build() {
  do_run cmake --preset release -S "$project" "-DCMAKE_OSX_ARCHITECTURES=arm64;x86_64"
  do_run cmake --build "$project/build/release" --parallel "$(processors)" \
    --target keyvora keyvora-mappings excel-stand-in stand-in-typist menu-tree
  do_run lipo -archs "$application/Contents/MacOS/keyvora"
  do_run lipo "$application/Contents/MacOS/keyvora" -verify_arch arm64 x86_64
}

about_signature="Signs the bundle for development and verifies the signature, the entitlements and what it loads."
step_signature() {
  quit_keyvora
  do_run "$project/packaging/macos/sign-development" "$application"
  do_run codesign --verify --strict --deep --verbose=2 "$application"
  do_run codesign --display --entitlements - --verbose=4 "$application"
  do_run otool -L "$application/Contents/MacOS/keyvora"
  do_run plutil -lint "$application/Contents/Info.plist"
}

about_launch="Takes keyvora's grant away if it has one, starts it and waits until its log says that it was refused. The system shows its dialog once."
step_launch() {
  local from
  quit_keyvora
  do_run tccutil reset Accessibility org.keyvora.keyvora || true
  from=$(log_length)
  do_run open "$application"
  expect_log "$from" 10 "launch "
  expect_log "$from" 10 "accessibility not granted yet"
  expect_log "$from" 10 "tap not installed yet: waiting for the Accessibility grant"
}

about_grant="Waits for the grant in System Settings, and until the log says that the tap is in, within 2 s of it. (A person.)"
step_grant() {
  local from
  need_keyvora
  from=$(log_length)
  do_run open "x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility"
  if [[ -n ${KEYVORA_GRANT_COMMAND:-} ]]; then
    do_run "$KEYVORA_GRANT_COMMAND" "$application"
  else
    ask "Switch keyvora on in the list, and press Return at the very moment."
  fi
  expect_log "$from" 2 "accessibility granted, tap installed"
}

# One question to a feed on this machine. usage: probe_with VERSION EXPECTED
probe_with() {
  local version=$1 expected=$2 output=$evidence/probe-$1.out
  sed -e "s/@VERSION@/$version/g" "$steps_folder/appcast.xml.in" >"$evidence/feed/appcast.xml"
  # By way of open, so that the system judges keyvora's own rights and not the terminal's.
  do_run open -n -W --stdout "$output" "$evidence/probe/keyvora.app" --args --probe-updates
  [[ -z $dry_run ]] || return 0
  grep -qE -- "$expected" "$output" || {
    echo "FAILED: a feed with $version: $(cat "$output")"
    return 1
  }
  echo "ok: a feed with $version: $(cat "$output")"
}

about_probe="Asks a feed on this machine for updates with --probe-updates: one newer version, the same one, and a feed that is away."
step_probe() {
  local server port=8817 plist=$evidence/probe/keyvora.app/Contents/Info.plist build
  [[ -n $dry_run || -d $application ]] || leave_out "keyvora.app is not built: the step build makes it"
  quit_keyvora
  mkdir -p "$evidence/feed" "$evidence/probe"
  do_run ditto "$application" "$evidence/probe/keyvora.app"
  do_run plutil -replace SUFeedURL -string "http://127.0.0.1:$port/appcast.xml" "$plist"
  # Sparkle requires a key for a feed without TLS; nothing is installed, so any 32 bytes do.
  do_run plutil -replace SUPublicEDKey -string "AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA=" "$plist"
  do_run plutil -replace NSAppTransportSecurity -json '{"NSAllowsLocalNetworking": true}' "$plist"
  do_run "$project/packaging/macos/sign-development" "$evidence/probe/keyvora.app"
  build=$(plutil -extract CFBundleVersion raw "$plist" 2>/dev/null || echo 1)
  if [[ -z $dry_run ]]; then
    python3 -m http.server --bind 127.0.0.1 --directory "$evidence/feed" "$port" &
    server=$!
    # shellcheck disable=SC2064
    trap "kill $server" EXIT
    sleep 1
  fi
  probe_with 999999 '^update .*\(999999\)$'
  probe_with "$build" '^current$'
  [[ -n $dry_run ]] || kill "$server"
  trap - EXIT
  probe_with 0 '^error '
  do_run rm -rf "$evidence/probe"
}
