# Sourced by ./test for --full: what takes too long for every change.
# shellcheck shell=bash

# What needs no build.
if check "Linting" scripts/lint; then
  passed=$((passed + 1))
fi

# As a packager builds it: optimised, with the checks of the C library that sanitized builds lack.
if check "Building (release-ci)" scripts/build release-ci; then
  run_tests release-ci --label-exclude full
fi

# The core under the thread sanitizer; the hosts' own libraries are not built for it.
if check "Building (tsan)" scripts/build tsan; then
  run_tests tsan
fi

# The second compiler: everything builds without a warning.
if check "Building (clang)" scripts/build clang && check "Checking with clang-tidy" scripts/tidy build/clang; then
  passed=$((passed + 1))
fi

# The fuzzers, a minute each.
for name in fuzz/*/; do
  if check "Fuzzing ($(basename "$name"))" scripts/fuzz 60 "$(basename "$name")"; then
    passed=$((passed + 1))
  fi
done
