# Sourced by ./test for --full: the checks that take too long for every change.
# shellcheck shell=bash

# Checks without a build.
if check "Linting" scripts/lint; then
  passed=$((passed + 1))
fi

# The build of a packager: optimised, with the C library's checks, which sanitized builds lack.
if check "Building (release-ci)" scripts/build release-ci; then
  run_tests release-ci --label-exclude full
fi

# The core with the thread sanitizer; the hosts' libraries are not built for it.
if check "Building (tsan)" scripts/build tsan; then
  run_tests tsan
fi

# The second compiler must build everything without a warning.
if check "Building (clang)" scripts/build clang && check "Checking with clang-tidy" scripts/tidy build/clang; then
  passed=$((passed + 1))
fi

# The fuzzers, one minute each.
for name in fuzz/*/; do
  if check "Fuzzing ($(basename "$name"))" scripts/fuzz 60 "$(basename "$name")"; then
    passed=$((passed + 1))
  fi
done
