// usage: menu-tree PID            prints the paths of all menu items, one per line, separated by tabs
//        menu-tree PID TITLE...   presses the item at this path and prints how many milliseconds that took
// Needs the Accessibility permission. Exits with 77 without it, and with 1 when there is no such item.

#import <ApplicationServices/ApplicationServices.h>
#import <Foundation/Foundation.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>

namespace {

id attributeOf(id element, CFStringRef name) {
  CFTypeRef value = nullptr;
  if (AXUIElementCopyAttributeValue((__bridge AXUIElementRef)element, name, &value) != kAXErrorSuccess)
    return nil;
  return CFBridgingRelease(value);
}

NSArray* childrenOf(id element) {
  id children = attributeOf(element, kAXChildrenAttribute);
  return [children isKindOfClass:NSArray.class] ? children : @[];
}

NSString* titleOf(id element) {
  id title = attributeOf(element, kAXTitleAttribute);
  return [title isKindOfClass:NSString.class] ? title : @"";
}

/// The items of a menu. An untitled menu is between an item and its subitems.
NSArray* itemsBelow(id element) {
  NSArray* children = childrenOf(element);
  if (children.count == 1 && [titleOf(children[0]) isEqualToString:@""]) return childrenOf(children[0]);
  return children;
}

void printBelow(id element, NSString* path) {
  for (id item in itemsBelow(element)) {
    NSString* title = titleOf(item);
    if (title.length == 0) continue;
    NSString* here = path.length == 0 ? title : [NSString stringWithFormat:@"%@\t%@", path, title];
    std::printf("%s\n", here.UTF8String);
    printBelow(item, here);
  }
}

int press(id menuBar, int count, char** titles) {
  id found = menuBar;
  for (int index = 0; index < count; ++index) {
    NSString* wanted = @(titles[index]);
    id next = nil;
    for (id item in itemsBelow(found)) {
      if ([titleOf(item) isEqualToString:wanted]) {
        next = item;
        break;
      }
    }
    if (next == nil) {
      std::fprintf(stderr, "menu-tree: no menu item %s\n", titles[index]);
      return 1;
    }
    found = next;
  }
  const auto start = std::chrono::steady_clock::now();
  const AXError error = AXUIElementPerformAction((__bridge AXUIElementRef)found, kAXPressAction);
  const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - start;
  std::printf("%.1f\t%d\n", taken.count(), static_cast<int>(error));
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  @autoreleasepool {
    char* end = nullptr;
    const long process = argc < 2 ? 0 : std::strtol(argv[1], &end, 10);
    if (process <= 0 || *end != '\0') {
      std::fputs("usage: menu-tree PID [TITLE...]\n", stderr);
      return 2;
    }
    if (!AXIsProcessTrusted()) {
      std::fputs("menu-tree: this process has no Accessibility permission\n", stderr);
      return 77;
    }
    id application = CFBridgingRelease(AXUIElementCreateApplication(static_cast<pid_t>(process)));
    id menuBar = attributeOf(application, kAXMenuBarAttribute);
    if (menuBar == nil) {
      std::fputs("menu-tree: the process shows no menu bar\n", stderr);
      return 1;
    }
    if (argc > 2) return press(menuBar, argc - 2, argv + 2);
    printBelow(menuBar, @"");
  }
  return 0;
}
