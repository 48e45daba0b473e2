# Sourced by ./test for --full: what takes too long for every change.
# shellcheck shell=bash

# The core under the thread sanitizer; the hosts' own libraries are not built for it.
if check "Building (tsan)" scripts/build tsan; then
  run_tests tsan
fi

# The second compiler: everything builds without a warning.
if check "Building (clang)" scripts/build clang && check "Checking with clang-tidy" scripts/tidy build/clang; then
  passed=$((passed + 1))
fi

# The fuzzers, a minute each, from their seeds: fuzz/NAME_fuzzer.cpp and fuzz/corpus/NAME.
if [[ -d $project/fuzz ]] && check "Building (fuzz)" scripts/build fuzz; then
  for fuzzer in fuzz/*_fuzzer.cpp; do
    name=$(basename "$fuzzer" _fuzzer.cpp)
    if check "Fuzzing $name" "build/fuzz/fuzz/${name}_fuzzer" -max_total_time=60 "fuzz/corpus/$name"; then
      passed=$((passed + 1))
    fi
  done
fi
