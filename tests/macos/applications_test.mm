#import "hosts/macos/applications.h"

#import <AppKit/AppKit.h>
#include <gtest/gtest.h>

#include <string>

#include "hosts/macos/accessibility.h"

namespace keyvora::macos {
namespace {

TEST(Applications, NoneRunsUnderAnIdentifierThatNobodyHas) {
  Applications applications;
  EXPECT_TRUE(applications.running("org.keyvora.no-such-application").empty());
}

TEST(Applications, TheFrontmostIsTheWorkspacesOwn) {
  Applications applications;
  NSString* identifier = NSWorkspace.sharedWorkspace.frontmostApplication.bundleIdentifier;
  const auto frontmost = applications.frontmostBundleIdentifier();
  ASSERT_EQ(frontmost.has_value(), identifier != nil);
  if (identifier != nil) EXPECT_EQ(*frontmost, identifier.UTF8String);
}

TEST(Accessibility, AnAttributeThatCannotBeReadIsAnErrorWithoutAValue) {
  Accessibility accessibility;
  const auto element = accessibility.application(getpid());
  ASSERT_TRUE(element);
  const auto answer = element->attribute("AXNoSuchAttribute");
  EXPECT_NE(answer.error, 0);
  EXPECT_TRUE(std::holds_alternative<std::monostate>(answer.value));
}

}  // namespace
}  // namespace keyvora::macos
