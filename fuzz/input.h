#pragma once

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string>
#include <string_view>

#include "text/utf8.h"

/// Shared by the fuzzers. A fuzzer turns bytes into an input, runs the code, and calls `require` for its
/// property; the sanitizers detect other faults.
namespace keyvora::fuzz {

/// Ends the run, and keeps the input, when the property does not hold.
inline void require(bool holds, std::string_view what) {
  if (holds) return;
  std::cerr << "violated: " << what << '\n';
  std::abort();
}

using text::isWellFormed;

/// Well-formed text from the input: mostly characters of keyboards, sometimes any character.
inline std::string someText(FuzzedDataProvider& input, std::size_t longest) {
  static constexpr std::string_view common = "abcfhHFX19 .,-/\t\n\"\\";
  static constexpr std::string_view special[] = {"é",      "e\u0301", "ß",   "ﬁ", "İ",
                                                 "ǆ",      "\u0301",  "…",   "⌥", "👩‍👩‍👧",
                                                 "\u2028", "\u00A0",  "\r\n"};
  std::string result;
  for (auto left = input.ConsumeIntegralInRange<std::size_t>(0, longest); left > 0; --left) {
    const auto choice = input.ConsumeIntegral<std::uint8_t>();
    if (choice < 0xC0) {
      result += common[choice % common.size()];
    } else if (choice < 0xF0) {
      result += special[choice % std::size(special)];
    } else {
      const auto any = input.ConsumeIntegralInRange<std::uint32_t>(0, 0x10FFFF);
      const bool surrogate = any >= 0xD800 && any <= 0xDFFF;
      text::append(result, surrogate ? text::replacementCharacter : static_cast<char32_t>(any));
    }
  }
  return result;
}

}  // namespace keyvora::fuzz

/// The fuzzers' entry; libFuzzer calls it with one input after another.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
