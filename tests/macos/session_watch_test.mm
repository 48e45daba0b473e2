#import "hosts/macos/session_watch.h"

#import <AppKit/AppKit.h>
#include <gtest/gtest.h>

#include <optional>
#include <stdexcept>

namespace keyvora::macos {
namespace {

void post(NSNotificationName name) {
  [NSWorkspace.sharedWorkspace.notificationCenter postNotificationName:name object:nil];
}

TEST(SessionWatch, HearsTheMacWakeAndTheSessionReturn) {
  int heard = 0;
  const SessionWatch watch([&heard] { ++heard; });
  post(NSWorkspaceDidWakeNotification);
  EXPECT_EQ(heard, 1);
  post(NSWorkspaceSessionDidBecomeActiveNotification);
  EXPECT_EQ(heard, 2);
  post(NSWorkspaceSessionDidResignActiveNotification);
  EXPECT_EQ(heard, 2);
}

TEST(SessionWatch, HearsNothingAfterItsEnd) {
  int heard = 0;
  std::optional<SessionWatch> watch;
  watch.emplace([&heard] { ++heard; });
  watch.reset();
  post(NSWorkspaceDidWakeNotification);
  EXPECT_EQ(heard, 0);
}

TEST(SessionWatch, StopsAnExceptionBeforeTheNotificationCenter) {
  const SessionWatch watch([] { throw std::runtime_error("from the block"); });
  EXPECT_NO_THROW(post(NSWorkspaceDidWakeNotification));
}

}  // namespace
}  // namespace keyvora::macos
