#include "platform/platform.h"

#include <gtest/gtest.h>

#include "platform/fatal.h"

namespace keyvora::platform {
namespace {

TEST(PlatformDeathTest, AskingForAPlatformBeforeOneWasChosenIsFatal) {
  EXPECT_DEATH(current(), "Fatal error: no platform was chosen");
}

TEST(PlatformDeathTest, AFatalErrorSaysItsMessage) {
  EXPECT_DEATH(fatal("the reason"), "Fatal error: the reason");
}

}  // namespace
}  // namespace keyvora::platform
