#include "hosts/x11/keyboard/modifier_state.h"

#include <gtest/gtest.h>

namespace keyvora::x11 {
namespace {

using namespace platform::event_flag;

TEST(ModifierState, AFlagStaysUntilAllItsKeysAreUp) {
  ModifierState state;
  state.press(64, option);
  state.press(108, option);
  state.release(64);
  EXPECT_EQ(state.flags(), option);
  state.release(108);
  EXPECT_EQ(state.flags(), 0U);
}

TEST(ModifierState, FlagsAddUpAndClearTogether) {
  ModifierState state;
  state.press(50, shift);
  state.press(37, command);
  state.press(38, 0);
  EXPECT_EQ(state.flags(), shift | command);
  state.clear();
  EXPECT_EQ(state.flags(), 0U);
}

TEST(ModifierState, EachModifierKeyHasItsFlag) {
  for (const auto& [key, flag] :
       std::initializer_list<std::pair<std::uint16_t, std::uint64_t>>{{key_code::rightCommand, command},
                                                                      {key_code::leftCommand, command},
                                                                      {key_code::leftShift, shift},
                                                                      {key_code::rightShift, shift},
                                                                      {key_code::leftOption, option},
                                                                      {key_code::rightOption, option},
                                                                      {key_code::leftControl, control},
                                                                      {key_code::rightControl, control},
                                                                      {key_code::capsLock, 0},
                                                                      {key_code::a, 0},
                                                                      {key_code::none, 0}}) {
    EXPECT_EQ(flagOf(key), flag) << key;
  }
}

}  // namespace
}  // namespace keyvora::x11
