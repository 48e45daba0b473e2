#include "hosts/x11/updates/update_history.h"

#include <gtest/gtest.h>

#include "tests/support/scratch_directory.h"

namespace keyvora::x11 {
namespace {

class UpdateHistoryTest : public testing::Test {
 protected:
  void write(const std::string& text) {
    std::filesystem::create_directories(file().parent_path());
    test::write(file(), text);
  }

  [[nodiscard]] std::filesystem::path file() const { return folder_ / "state" / "keyvora" / "updates"; }

  test::ScratchDirectory folder_;
};

TEST_F(UpdateHistoryTest, IsEmptyAtFirstAndReadingItMakesNoFile) {
  UpdateHistory history(file());
  EXPECT_EQ(history.sinceLastCheck(), std::nullopt);
  EXPECT_EQ(history.skippedVersion(), "");
  EXPECT_FALSE(std::filesystem::exists(file()));
}

TEST_F(UpdateHistoryTest, IsKeptFromOneRunToTheNext) {
  UpdateHistory(file()).recordCheck();
  UpdateHistory(file()).skipVersion("1.3 beta");
  UpdateHistory next(file());
  ASSERT_TRUE(next.sinceLastCheck().has_value());
  EXPECT_LT(next.sinceLastCheck()->count(), 60);
  EXPECT_EQ(next.skippedVersion(), "1.3 beta");
}

TEST_F(UpdateHistoryTest, ACheckInTheFutureCountsAsNone) {
  write("[Updates]\nLastCheck=99999999999\n");
  EXPECT_EQ(UpdateHistory(file()).sinceLastCheck(), std::nullopt);
}

TEST_F(UpdateHistoryTest, NoNumberIsTooGreatOrTooSmall) {
  for (const auto* number : {"9223372036854775807", "-9223372036854775808", "9223372036854775808",
                             "-9223372036854775809", "1e300", "-1", "0"}) {
    write("[Updates]\nLastCheck=" + std::string(number) + "\n");
    EXPECT_EQ(UpdateHistory(file()).sinceLastCheck(), std::nullopt) << number;
  }
}

TEST_F(UpdateHistoryTest, AnOldCheckCounts) {
  write("[Updates]\nLastCheck=1000000000\n");
  EXPECT_GT(UpdateHistory(file()).sinceLastCheck()->count(), 1e8);
}

TEST_F(UpdateHistoryTest, ABrokenFileIsStartedAnew) {
  write("\xFF no key file [[");
  UpdateHistory history(file());
  EXPECT_EQ(history.sinceLastCheck(), std::nullopt);
  history.recordCheck();
  EXPECT_TRUE(history.sinceLastCheck().has_value());
}

TEST_F(UpdateHistoryTest, WhatCannotBeKeptIsForgottenWithoutAWord) {
  write("");
  UpdateHistory history(file() / "below a file");
  history.recordCheck();
  EXPECT_EQ(history.sinceLastCheck(), std::nullopt);
}

}  // namespace
}  // namespace keyvora::x11
