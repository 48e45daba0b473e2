#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <functional>

namespace keyvora::macos {

/// Runs the main run loop in a mode until the condition is true; false after `limit` seconds.
inline bool runLoopUntil(const std::function<bool()>& condition, CFTimeInterval limit = 5.0,
                         CFRunLoopMode mode = kCFRunLoopDefaultMode) {
  const CFAbsoluteTime end = CFAbsoluteTimeGetCurrent() + limit;
  while (!condition()) {
    if (CFAbsoluteTimeGetCurrent() > end) return false;
    CFRunLoopRunInMode(mode, 0.01, true);
  }
  return true;
}

}  // namespace keyvora::macos
