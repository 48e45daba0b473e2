#include <gtest/gtest.h>

#include <map>

#include "tap/key_sequence_tap.h"

namespace keyvora {
namespace {

TEST(LetterForTest, LettersAndDigitsByTheirPlaceAndNoOtherKey) {
  const std::map<int, char> letters{
      {0, 'A'},  {1, 'S'},  {2, 'D'},  {3, 'F'},  {4, 'H'},  {5, 'G'},  {6, 'Z'},  {7, 'X'},  {8, 'C'},
      {9, 'V'},  {11, 'B'}, {12, 'Q'}, {13, 'W'}, {14, 'E'}, {15, 'R'}, {16, 'Y'}, {17, 'T'}, {18, '1'},
      {19, '2'}, {20, '3'}, {21, '4'}, {22, '6'}, {23, '5'}, {25, '9'}, {26, '7'}, {28, '8'}, {29, '0'},
      {31, 'O'}, {32, 'U'}, {34, 'I'}, {35, 'P'}, {37, 'L'}, {38, 'J'}, {40, 'K'}, {45, 'N'}, {46, 'M'},
  };
  ASSERT_EQ(letters.size(), 36U);
  for (int keyCode = 0; keyCode <= 0xFFFF; ++keyCode) {
    const auto expected = letters.find(keyCode);
    const auto letter = KeySequenceTap::letterFor(static_cast<std::uint16_t>(keyCode));
    if (expected == letters.end()) {
      EXPECT_EQ(letter, std::nullopt) << keyCode;
    } else {
      EXPECT_EQ(letter, expected->second) << keyCode;
    }
  }
}

}  // namespace
}  // namespace keyvora
