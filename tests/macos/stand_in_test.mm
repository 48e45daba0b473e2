// The parts of the stand-in that need no window server: its menus and its record.

#import "tests/macos/stand_in/menus.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "tests/macos/scratch_directory.h"
#include "tests/macos/stand_in/record.h"

namespace keyvora::stand_in {
namespace {

/// The item at a path of titles; nil when there is none.
NSMenuItem* itemAt(NSMenu* menu, NSArray<NSString*>* path) {
  NSMenuItem* found = nil;
  for (NSString* title in path) {
    found = [menu itemWithTitle:title];
    menu = found.submenu;
  }
  return found;
}

/// The lines of the record, without the times.
std::vector<std::string> linesOf(const std::filesystem::path& file) {
  std::vector<std::string> lines;
  std::ifstream stream(file);
  for (std::string line; std::getline(stream, line);) lines.push_back(line.substr(line.find('\t') + 1));
  return lines;
}

class StandIn : public testing::Test {
 protected:
  StandIn() {
    [NSApplication sharedApplication];
    menus_ = [[KVStandInMenus alloc] init];
    bar_ = [menus_ menuBar];
  }

  KVStandInMenus* menus_;
  NSMenu* bar_;
};

TEST_F(StandIn, HasTheMenusThatItsDocumentNames) {
  EXPECT_NE(itemAt(bar_, @[ @"Format", @"Column", @"Hide" ]), nil);
  NSMenuItem* dialog = itemAt(bar_, @[ @"File", @"Open Dialog..." ]);
  EXPECT_TRUE([NSStringFromSelector(dialog.action) isEqualToString:@"openDialog:"]);
  id target = dialog.target;
  EXPECT_EQ(target, menus_);
}

TEST_F(StandIn, PasteValuesHasTheKeyThatItsDocumentPresses) {
  NSMenuItem* values = itemAt(bar_, @[ @"Edit", @"Paste Values" ]);
  EXPECT_TRUE([values.keyEquivalent isEqualToString:@"v"]);
  EXPECT_EQ(values.keyEquivalentModifierMask, NSEventModifierFlagCommand | NSEventModifierFlagShift);
}

TEST_F(StandIn, WritesDownWhatWasChosen) {
  const macos::ScratchDirectory scratch;
  const auto file = scratch.path() / "record";
  setenv("KEYVORA_STAND_IN_RECORD", file.c_str(), 1);  // read once, at the first line
  NSMenu* column = itemAt(bar_, @[ @"Format", @"Column" ]).submenu;
  [column performActionForItemAtIndex:0];
  record().line("script from keyvora");
  EXPECT_EQ(linesOf(file), (std::vector<std::string>{"menu Hide", "script from keyvora"}));
}

}  // namespace
}  // namespace keyvora::stand_in
