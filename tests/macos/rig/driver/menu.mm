#include "tests/macos/rig/driver/menu.h"

#import <AppKit/AppKit.h>

#include "tests/macos/rig/driver/main_thread.h"
#include "tests/macos/rig/recorders/status_item.h"

namespace keyvora::rig {
namespace {

std::string rowText(NSMenuItem* item) {
  if (item.isSeparatorItem) return "-";
  std::string text = item.title.UTF8String;
  if (item.state == NSOnState) text = "✓ " + text;
  if (item.keyEquivalent.length > 0) text += std::string(" ⌘") + item.keyEquivalent.UTF8String;
  return item.isEnabled ? text : "(" + text + ")";
}

}  // namespace

std::string titleText() {
  std::string text = "no item";
  onMain([&text] {
    if (KVStatusItem.current != nil) text = KVStatusItem.current.button.title.UTF8String;
  });
  return text;
}

std::string rowsText() {
  std::string text;
  onMain([&text] {
    NSMenu* menu = KVStatusItem.current.menu;
    [menu update];
    for (NSMenuItem* item in menu.itemArray) text += (text.empty() ? "" : "\t") + rowText(item);
  });
  return text;
}

std::string choose(const std::string& title) {
  std::string answer;
  onMain([&] {
    NSMenu* menu = [[KVStatusItem.current.menu retain] autorelease];
    const NSInteger index = [menu indexOfItemWithTitle:[NSString stringWithUTF8String:title.c_str()]];
    if (index < 0) {
      answer = "no such row";
      return;
    }
    [menu update];
    answer = [menu itemAtIndex:index].isEnabled ? "done" : "disabled";
    if (answer == "done") [menu performActionForItemAtIndex:index];
  });
  return answer;
}

}  // namespace keyvora::rig
