#include "appcast/version_order.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>

namespace keyvora::appcast {
namespace {

using Case = std::tuple<const char*, char, const char*>;

class VersionOrderTest : public testing::TestWithParam<Case> {};

TEST_P(VersionOrderTest, Holds) {
  const auto [a, relation, b] = GetParam();
  const int order = compareVersions(a, b);
  const int reverse = compareVersions(b, a);
  const int expected = relation == '<' ? -1 : 0;
  EXPECT_EQ((order > 0) - (order < 0), expected);
  EXPECT_EQ((reverse > 0) - (reverse < 0), -expected);
}

INSTANTIATE_TEST_SUITE_P(Numbers, VersionOrderTest,
                         testing::Values(Case{"1.2", '<', "1.10"}, Case{"1.02", '=', "1.2"},
                                         Case{"1.0", '=', "1.0.0.0"}, Case{"1", '<', "1.0.1"},
                                         Case{"", '<', "1"}, Case{"", '=', ""}, Case{"41", '<', "42"},
                                         Case{"1.9.9", '<', "2"},
                                         Case{"99999999999999999999", '=', "9223372036854775807"},
                                         Case{"9223372036854775806", '<', "9223372036854775807"},
                                         Case{"1.0", '<', "1,0"}, Case{".1", '<', "0.0.1"}));

INSTANTIATE_TEST_SUITE_P(Letters, VersionOrderTest,
                         testing::Values(Case{"1.0b", '<', "1.0"}, Case{"1.0b1", '<', "1.0.1"},
                                         Case{"1.0.0b1", '<', "1.0"}, Case{"1.0RC", '<', "1.0a"},
                                         Case{"v1.0", '<', "1.0"}, Case{"1.0~rc1", '<', "1.0"},
                                         Case{"1.0+5", '<', "1.0+6"}, Case{"1.0b1", '<', "1.0b2"},
                                         Case{"2.0b", '<', "2.0 (5)"}, Case{"1.0é", '<', "1.0"}));

INSTANTIATE_TEST_SUITE_P(Separators, VersionOrderTest,
                         testing::Values(Case{"1.0.", '=', "1.0"}, Case{"1..0", '<', "1.0"},
                                         Case{"1.0_1", '<', "1.0.1"}, Case{"1.0", '<', "1.0 beta"},
                                         Case{"-1", '<', "1"}));

INSTANTIATE_TEST_SUITE_P(WhatFollowsADash, VersionOrderTest,
                         testing::Values(Case{"1.0-beta", '=', "1.0"}, Case{"1.0-1", '=', "1.0-2"},
                                         Case{"1.0-9", '<', "1.1"}));

TEST(VersionOrderTest, ALeadingDashAgainstAnotherSeparatorIsOlderWhicheverIsAskedAbout) {
  EXPECT_LT(compareVersions("-", "_"), 0);
  EXPECT_LT(compareVersions("_", "-"), 0);
}

TEST(VersionOrderTest, IsQuickForLongVersions) {
  const std::string digits(100'000, '7');
  const std::string dots(100'000, '.');
  EXPECT_EQ(compareVersions(digits, digits), 0);
  EXPECT_EQ(compareVersions(dots, dots), 0);
}

}  // namespace
}  // namespace keyvora::appcast
