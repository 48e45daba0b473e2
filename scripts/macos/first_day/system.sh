# shellcheck shell=bash
# What this Mac is, and the project's own tests on it. Sourced by first-day.
# shellcheck disable=SC2034,SC2154

about_versions="Writes down the versions of macOS, the compiler, CMake, Excel and keyvora, and the processor."
step_versions() {
  do_run sw_vers
  do_run uname -mrs
  do_run sysctl -n machdep.cpu.brand_string
  do_run clang++ --version
  do_run xcrun --show-sdk-version
  do_run cmake --version
  do_run grep '^project(keyvora VERSION' "$project/CMakeLists.txt"
  do_run git -C "$project" log -1 --format='%H %cd' || echo "The sources are not a git checkout: their commit is unknown."
  do_run mdls -name kMDItemVersion "/Applications/Microsoft Excel.app" || echo "Excel is not installed in /Applications."
}

about_settings="Writes down the language, the keyboard layout, secure input, and Excel's key-tips setting."
step_settings() {
  do_run defaults read -g AppleLanguages
  do_run defaults read -g AppleLocale || true
  do_run defaults read com.apple.HIToolbox AppleSelectedInputSources || true
  do_run bash -c 'defaults read com.microsoft.Excel 2>/dev/null | grep -i -e keytip -e "key tip" || echo "No key-tips setting is stored."'
  do_run bash -c 'ioreg -l -w 0 | grep -o "kCGSSessionSecureInputPID.*" || echo "Nobody holds secure input."'
}

about_suite="Runs ./test: every test that a Mac can run, the macOS host's native ones among them."
step_suite() { do_run "$project/test"; }
