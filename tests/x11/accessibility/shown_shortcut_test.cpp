#include "hosts/x11/accessibility/shown_shortcut.h"

#include <gtest/gtest.h>

namespace keyvora::x11 {
namespace {

TEST(ShownShortcutTest, IsToldInTheWordsOfDocuments) {
  EXPECT_EQ(shortcutIn("n;<Alt>f:n;<Primary>n"), "command+n");
  EXPECT_EQ(shortcutIn("a;<Alt>f:a;<Primary><Shift>S"), "command+shift+s");
  EXPECT_EQ(shortcutIn(";;<Control><Alt><Super>space"), "command+option+control+space");
  EXPECT_EQ(shortcutIn("m;<Alt>e:m;F2"), "f2");
  EXPECT_EQ(shortcutIn(";;<Primary>semicolon"), "command+;");
}

TEST(ShownShortcutTest, ABindingWithoutOneHasNone) {
  for (const auto* binding : {"", ";", ";;", "c;<Alt>f:c;", "<Alt>f;<Alt>f;", ";;<Primary", ";;<Hyper>n"}) {
    EXPECT_EQ(shortcutIn(binding), std::nullopt) << binding;
  }
}

}  // namespace
}  // namespace keyvora::x11
