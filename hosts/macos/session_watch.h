#pragma once

#import <Foundation/Foundation.h>

#include <functional>

@class KVSessionObserver;

namespace keyvora::macos {

/// Calls back after the Mac woke up, the login session became the active one, or the screen was unlocked.
/// After each of these the system may have left an event tap disabled without a notice. Main thread.
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
