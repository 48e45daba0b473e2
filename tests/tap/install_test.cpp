#include <gtest/gtest.h>

#include "tests/tap/expectations.h"
#include "tests/tap/tap_rig.h"

namespace keyvora::testing {
namespace {

using platform::Verdict;
using simulated::Call;
using namespace platform::event_flag;
using namespace platform::event_type;

class InstallTest : public ::testing::Test {
 protected:
  simulated::Host host;
  platform::Scope scope{host.platform()};
  Mapping mapping;
  Runner runner;
  KeySequenceTap tap{[this]() -> const Mapping& { return mapping; }, runner};
};

TEST_F(InstallTest, CreatesAndEnablesOneTap) {
  EXPECT_FALSE(tap.installed());
  EXPECT_EQ(host.keyboard.tapCount(), 0U);
  EXPECT_TRUE(tap.install());
  EXPECT_TRUE(tap.installed());
  EXPECT_EQ(host.keyboard.tapCount(), 1U);
  EXPECT_TRUE(host.keyboard.tapsEnabled());
}

TEST_F(InstallTest, ARefusalChangesNothing) {
  host.failures.nth(Call::createTap, 1);
  EXPECT_FALSE(tap.install());
  EXPECT_FALSE(tap.installed());
  EXPECT_EQ(host.keyboard.tapCount(), 0U);
  EXPECT_EQ(host.failures.count(Call::enableTap), 0U);
  EXPECT_TRUE(tap.install()) << "and can be tried again";
  EXPECT_TRUE(tap.installed());
}

TEST_F(InstallTest, ASecondCallAsksForASecondTap) {
  EXPECT_TRUE(tap.install());
  EXPECT_TRUE(tap.install());
  EXPECT_EQ(host.failures.count(Call::createTap), 2U) << "whoever calls looks at installed() first";
}

TEST_F(InstallTest, IsIdleWithoutATimerBeforeItSaysSo) {
  mapping = mappingOf({"H", "HF"});
  tap.install();
  host.applications.front = "com.microsoft.Excel";
  host.keyboard.tapOption();
  host.keyboard.type(key::h);
  ASSERT_EQ(host.mainLoop.pending(), 1U) << "the wait on H";
  int told = 0;
  tap.onStateChange = [&](bool armed, const std::string&) {
    if (armed || ++told > 1) return;
    EXPECT_EQ(host.mainLoop.pending(), 0U);
    EXPECT_EQ(tap.handle(keyDown, {keyDown, key::f, 0, 0}), Verdict::pass);
  };
  host.keyboard.type(key::escape);
  EXPECT_EQ(told, 1);
}

TEST_F(InstallTest, SeesKeysAndModifierChangesOnly) {
  tap.install();
  int reports = 0;
  tap.onStateChange = [&](bool, const std::string&) { ++reports; };
  for (std::uint32_t type = 0; type < 64; ++type) {
    reports = 0;
    host.keyboard.send({type, 0, 0, 0});  // outside the target each event is reported
    EXPECT_EQ(reports, type >= 10 && type <= 12 ? 1 : 0) << type;
  }
}

TEST_F(InstallTest, WithoutATapANoticeThatItIsOffIsPassedOver) {
  EXPECT_EQ(tap.handle(tapDisabledByTimeout, {tapDisabledByTimeout, 0, 0, 0}), Verdict::pass);
  EXPECT_EQ(host.failures.count(Call::enableTap), 0U);
}

TEST_F(InstallTest, VerdictsGoBackToTheSystem) {
  tap.install();
  host.applications.front = "com.microsoft.Excel";
  host.keyboard.tapOption();
  EXPECT_EQ(host.keyboard.type(key::h), Verdict::swallow);
  EXPECT_EQ(host.keyboard.type(key::h), Verdict::pass);
}

}  // namespace
}  // namespace keyvora::testing
