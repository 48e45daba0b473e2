#include "text/ascii.h"

#include <gtest/gtest.h>

#include <string_view>

namespace keyvora::text {
namespace {

constexpr std::string_view lowerCase = "abcdefghijklmnopqrstuvwxyz";
constexpr std::string_view upperCase = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";

TEST(Ascii, OnlyLettersHaveTwoCasesAndEveryOtherByteStays) {
  for (int byte = 0; byte < 256; ++byte) {
    const char c = static_cast<char>(byte);
    const auto lower = lowerCase.find(c);
    const auto upper = upperCase.find(c);
    EXPECT_EQ(asciiLower(c), upper == upperCase.npos ? c : lowerCase[upper]) << byte;
    EXPECT_EQ(asciiUpper(c), lower == lowerCase.npos ? c : upperCase[lower]) << byte;
    EXPECT_EQ(isAsciiLetter(c), lower != lowerCase.npos || upper != upperCase.npos) << byte;
    EXPECT_EQ(isAsciiDigit(c), std::string_view("0123456789").find(c) != std::string_view::npos) << byte;
  }
}

}  // namespace
}  // namespace keyvora::text
