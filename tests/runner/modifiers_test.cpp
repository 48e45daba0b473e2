#include "runner/modifiers.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace keyvora {
namespace {

TEST(ModifiersTest, EachHasItsNamesInAnyCase) {
  struct Case {
    const char* name;
    std::optional<std::uint64_t> flag;
  };
  for (const auto& [name, flag] : {
           Case{"command", 0x100000},
           Case{"cmd", 0x100000},
           Case{"option", 0x80000},
           Case{"alt", 0x80000},
           Case{"control", 0x40000},
           Case{"ctrl", 0x40000},
           Case{"shift", 0x20000},
           Case{"Cmd", 0x100000},
           Case{"SHIFT", 0x20000},
           Case{"", {}},
           Case{" cmd", {}},
           Case{"cmd ", {}},
           Case{"fn", {}},
           Case{"opt", {}},
           Case{"super", {}},
           Case{"cmd+shift", {}},
           Case{"\u017Fhift", {}},
       }) {
    EXPECT_EQ(modifierFlag(name), flag) << name;
  }
}

TEST(ModifiersTest, TheFlagsOfSeveralAddUp) {
  struct Case {
    std::vector<std::string> names;
    std::uint64_t flags;
  };
  for (const auto& [names, flags] : {
           Case{{}, 0},
           Case{{"Cmd", "SHIFT"}, 0x120000},
           Case{{"shift", "shift", "Shift"}, 0x20000},
           Case{{"command", "option", "control", "shift"}, 0x1E0000},
           Case{{"cmd", "command"}, 0x100000},
           Case{{"hyper", " cmd", "alt"}, 0x80000},
       }) {
    EXPECT_EQ(modifierFlags(names), flags);
  }
}

}  // namespace
}  // namespace keyvora
