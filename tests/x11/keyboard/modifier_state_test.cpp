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
  for (const auto& [key, flag] : std::initializer_list<Row>{{54, command},
                                                            {55, command},
                                                            {56, shift},
                                                            {60, shift},
                                                            {58, option},
                                                            {61, option},
                                                            {59, control},
                                                            {62, control},
                                                            {57, 0},
                                                            {0, 0},
                                                            {unknownKey, 0}}) {
    ModifierState state;
    state.set(key, true);
    EXPECT_EQ(state.flags(), flag) << key;
    state.set(key, false);
    EXPECT_EQ(state.flags(), 0U) << key;
  }
}

TEST(ModifierState, AFlagStaysUntilBothItsKeysAreUp) {
  ModifierState state;
  state.set(modifier_key::leftOption, true);
  state.set(modifier_key::rightOption, true);
  state.set(modifier_key::leftOption, false);
  EXPECT_EQ(state.flags(), option);
  state.set(modifier_key::rightOption, false);
  EXPECT_EQ(state.flags(), 0U);
}

TEST(ModifierState, FlagsAddUpAndClearTogether) {
  ModifierState state;
  state.set(modifier_key::leftShift, true);
  state.set(modifier_key::leftCommand, true);
  EXPECT_EQ(state.flags(), shift | command);
  state.clear();
  EXPECT_EQ(state.flags(), 0U);
}

}  // namespace
}  // namespace keyvora::x11
