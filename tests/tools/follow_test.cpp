#include "tools/follow.h"

#include <gtest/gtest.h>

#include "tests/support/scratch_directory.h"

namespace keyvora::tools {
namespace {

using test::write;

struct FollowTest : testing::Test {
  test::ScratchDirectory directory;
  const std::filesystem::path file = directory / "mappings.json";
};

TEST_F(FollowTest, GivesTheContentOnceAndThenEveryChange) {
  write(file, "one");
  Follower follower(file);
  EXPECT_EQ(follower.changed(), "one");
  EXPECT_EQ(follower.changed(), std::nullopt);
  write(file, "two");  // in place, with the same length and time stamp
  EXPECT_EQ(follower.changed(), "two");
  EXPECT_EQ(follower.changed(), std::nullopt);
}

TEST_F(FollowTest, FollowsARenamingAndADeletion) {
  write(file, "one");
  Follower follower(file);
  follower.changed();
  write(directory / "new", "two");
  std::filesystem::rename(directory / "new", file);
  EXPECT_EQ(follower.changed(), "two");
  std::filesystem::remove(file);
  EXPECT_EQ(follower.changed(), std::nullopt);
  write(file, "three");
  EXPECT_EQ(follower.changed(), "three");
}

TEST_F(FollowTest, SaysOnceThatAFileIsGoneForGood) {
  write(file, "one");
  Follower follower(file);
  follower.changed();
  std::filesystem::remove(file);
  EXPECT_EQ(follower.changed(), std::nullopt);
  EXPECT_FALSE(follower.vanished());  // a save may delete the file first
  int said = 0;
  for (int look = 0; look < 20; ++look) {
    EXPECT_EQ(follower.changed(), std::nullopt);
    said += follower.vanished() ? 1 : 0;
  }
  EXPECT_EQ(said, 1);
  write(file, "one");
  EXPECT_EQ(follower.changed(), "one");
}

TEST_F(FollowTest, ASaveThatChangesNothingIsNone) {
  write(file, "one");
  Follower follower(file);
  follower.changed();
  write(file, "one");
  EXPECT_EQ(follower.changed(), std::nullopt);
}

TEST_F(FollowTest, WaitsForAFileThatIsNotThereOrJustBeingWritten) {
  Follower follower(file);
  EXPECT_EQ(follower.changed(), std::nullopt);
  write(file, "one");
  EXPECT_EQ(follower.changed(), "one");
  write(file, "");
  EXPECT_EQ(follower.changed(), std::nullopt);
  write(file, "two");
  EXPECT_EQ(follower.changed(), "two");
}

TEST_F(FollowTest, AnOldFileIsNotReadAgainAndAgain) {
  write(file, "one");
  const auto longAgo = std::filesystem::file_time_type::clock::now() - std::chrono::hours(1);
  std::filesystem::last_write_time(file, longAgo);
  Follower follower(file);
  follower.changed();
  write(file, "two");
  std::filesystem::last_write_time(file, longAgo);  // no visible change of the file
  EXPECT_EQ(follower.changed(), std::nullopt);
}

}  // namespace
}  // namespace keyvora::tools
