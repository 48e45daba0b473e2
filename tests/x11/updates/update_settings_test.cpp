#include "hosts/x11/updates/update_settings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "hosts/x11/applications/bundle.h"
#include "tests/support/scratch_directory.h"

namespace keyvora::x11 {
namespace {

using std::chrono::seconds;

class UpdateSettingsTest : public testing::Test {
 protected:
  /// The settings of a bundle whose dictionary has these entries.
  appcast::Settings with(const std::string& entries) {
    test::write(folder_ / "Info.plist", "<plist version=\"1.0\"><dict>" + entries + "</dict></plist>");
    return updateSettings(bundle());
  }

  [[nodiscard]] Bundle bundle() const { return {folder_.path(), folder_.path()}; }

  test::ScratchDirectory folder_;
};

TEST_F(UpdateSettingsTest, AreReadUnderSparklesKeys) {
  const auto settings = with(R"(<key>SUFeedURL</key><string>https://example.org/feed.xml</string>
      <key>CFBundleVersion</key><string>42</string>
      <key>CFBundleShortVersionString</key><string>1.2</string>
      <key>SUEnableAutomaticChecks</key><true/>
      <key>SUScheduledCheckInterval</key><integer>7200</integer>
      <key>KeyvoraUpdateTimeout</key><integer>5</integer>)");
  EXPECT_EQ(settings.feedAddress, "https://example.org/feed.xml");
  EXPECT_EQ(settings.version, "42");
  EXPECT_EQ(settings.displayVersion, "1.2");
  EXPECT_TRUE(settings.checksAutomatically);
  EXPECT_EQ(settings.checkInterval, seconds(7200));
  EXPECT_EQ(settings.fetchTimeout, seconds(5));
}

TEST_F(UpdateSettingsTest, HaveDefaults) {
  const auto settings = with("");
  EXPECT_EQ(settings.feedAddress, "");
  EXPECT_EQ(settings.version, "0");
  EXPECT_EQ(settings.displayVersion, "dev");
  EXPECT_FALSE(settings.checksAutomatically);
  EXPECT_EQ(settings.checkInterval, seconds(86400));
  EXPECT_EQ(settings.fetchTimeout, seconds(30));
}

TEST_F(UpdateSettingsTest, WithoutADictionaryAreTheDefaultsToo) {
  EXPECT_EQ(updateSettings(bundle()).version, "0");
}

TEST_F(UpdateSettingsTest, AreNotTakenFromValuesOfAnotherType) {
  const auto settings =
      with(R"(<key>SUFeedURL</key><true/><key>SUEnableAutomaticChecks</key><string>YES</string>
      <key>SUScheduledCheckInterval</key><string>7200</string>)");
  EXPECT_EQ(settings.feedAddress, "");
  EXPECT_FALSE(settings.checksAutomatically);
  EXPECT_EQ(settings.checkInterval, seconds(86400));
}

TEST_F(UpdateSettingsTest, ChecksAreAtLeastAnHourApart) {
  EXPECT_EQ(with("<key>SUScheduledCheckInterval</key><integer>1</integer>").checkInterval, seconds(3600));
  EXPECT_EQ(with("<key>SUScheduledCheckInterval</key><integer>-7</integer>").checkInterval, seconds(3600));
}

TEST_F(UpdateSettingsTest, TheUsersLanguagesComeWithThem) {
  EXPECT_THAT(with("").languages, testing::Contains("C"));
}

}  // namespace
}  // namespace keyvora::x11
