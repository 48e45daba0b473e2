#pragma once

#import <Foundation/Foundation.h>

#include <functional>

@class KVSessionObserver;

namespace keyvora::macos {

/// Calls back after the Mac woke, the login session became the active one again, or the screen was unlocked:
/// the moments after which the system may have left an event tap off without telling. Main thread.
class SessionWatch {
 public:
  explicit SessionWatch(std::function<void()> returned);
  ~SessionWatch();
  SessionWatch(const SessionWatch&) = delete;
  SessionWatch& operator=(const SessionWatch&) = delete;

 private:
  KVSessionObserver* observer_;
};

}  // namespace keyvora::macos
