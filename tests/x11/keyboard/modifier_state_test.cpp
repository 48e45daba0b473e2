#include "hosts/x11/keyboard/modifier_state.h"

#include <gtest/gtest.h>

namespace keyvora::x11 {
namespace {

using namespace platform::event_flag;

TEST(ModifierState, EachModifierKeySetsItsFlagAndTakesItAway) {
  struct Row {
    std::uint16_t key;
    std::uint64_t flag;
  };
  for (const auto& [key, flag] : std::initializer_list<Row>{{key_code::rightCommand, command},
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
    ModifierState state;
    state.set(key, true);
    EXPECT_EQ(state.flags(), flag) << key;
    state.set(key, false);
    EXPECT_EQ(state.flags(), 0U) << key;
  }
}

TEST(ModifierState, AFlagStaysUntilBothItsKeysAreUp) {
  ModifierState state;
  state.set(key_code::leftOption, true);
  state.set(key_code::rightOption, true);
  state.set(key_code::leftOption, false);
  EXPECT_EQ(state.flags(), option);
  state.set(key_code::rightOption, false);
  EXPECT_EQ(state.flags(), 0U);
}

TEST(ModifierState, FlagsAddUpAndClearTogether) {
  ModifierState state;
  state.set(key_code::leftShift, true);
  state.set(key_code::leftCommand, true);
  EXPECT_EQ(state.flags(), shift | command);
  state.clear();
  EXPECT_EQ(state.flags(), 0U);
}

}  // namespace
}  // namespace keyvora::x11
