// An autorelease pool for each native test, since GoogleTest has no run loop that would provide one. Blocks
// left in the main queue run before it is released.

#import <Foundation/Foundation.h>
#include <gtest/gtest.h>

#include "tests/macos/rig/recorders/dispatch_queues.h"

namespace {

class PoolForEachTest final : public testing::EmptyTestEventListener {
  void OnTestStart(const testing::TestInfo&) override { pool_ = [[NSAutoreleasePool alloc] init]; }
  void OnTestEnd(const testing::TestInfo&) override {
    keyvora::rig::runMainQueue();
    keyvora::rig::waitForSerialQueues();
    [pool_ release];
  }

  NSAutoreleasePool* pool_ = nil;
};

[[maybe_unused]] const bool added = [] {
  testing::UnitTest::GetInstance()->listeners().Append(new PoolForEachTest);
  return true;
}();

}  // namespace
