#import "hosts/macos/process.h"

#import <Foundation/Foundation.h>
#include <gtest/gtest.h>

#include <cstdio>

namespace keyvora::macos {
namespace {

void say(const char* text) { std::fputs(text, stderr); }

TEST(Process, RunsItsExitBlocksBackwardsAndEndsWithTheStatus) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        Process process;
        process.atExit([] { say("first"); });
        process.atExit([] { say("second "); });
        process.exit(3);
      },
      testing::ExitedWithCode(3), "second first");
}

TEST(Process, AnExceptionInAnExitBlockDoesNotStopTheOthers) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        Process process;
        process.atExit([] { say("still said"); });
        process.atExit([] { [NSException raise:NSGenericException format:@"from an exit block"]; });
        process.exit(0);
      },
      testing::ExitedWithCode(0), "still said");
}

}  // namespace
}  // namespace keyvora::macos
