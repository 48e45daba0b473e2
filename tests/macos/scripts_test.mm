#import "hosts/macos/scripts.h"

#include <gtest/gtest.h>

namespace keyvora::macos {
namespace {

TEST(Scripts, ASuccessfulScriptSucceeds) {
  Scripts scripts;
  EXPECT_TRUE(scripts.run("return 1").succeeded);
}

TEST(Scripts, ASyntaxErrorIsAFailureWithAMessage) {
  Scripts scripts;
  const auto outcome = scripts.run("tell tell tell");
  EXPECT_FALSE(outcome.succeeded);
  ASSERT_TRUE(outcome.message);
  EXPECT_FALSE(outcome.message->empty());
}

TEST(Scripts, AnErrorRaisedByTheScriptCarriesItsMessage) {
  Scripts scripts;
  const auto outcome = scripts.run("error \"the reason\"");
  EXPECT_FALSE(outcome.succeeded);
  EXPECT_EQ(outcome.message, "the reason");
}

}  // namespace
}  // namespace keyvora::macos
