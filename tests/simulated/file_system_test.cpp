#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "hosts/simulated/host.h"

namespace keyvora::simulated {
namespace {

struct SimulatedFileSystemTest : testing::Test {
  Host host;
  platform::FileSystem& door = host.files;
  int notified = 0;

  std::unique_ptr<platform::FileWatch> watch(const char* path) {
    return door.watch(path, [this] { ++notified; });
  }

  /// How many notifications came since the last call.
  int notifications() {
    host.advance(0);
    return std::exchange(notified, 0);
  }
};

TEST_F(SimulatedFileSystemTest, AFileNeedsADirectory) {
  EXPECT_FALSE(door.replace("/a/b/file", "text"));
  EXPECT_TRUE(door.createDirectories("/a/b"));
  EXPECT_TRUE(door.replace("/a/b/file", "text"));
  EXPECT_EQ(door.read("/a/b/file").bytes, "text");
  EXPECT_TRUE(door.exists("/a/b/file"));
  EXPECT_TRUE(door.exists("/a/b"));
  EXPECT_FALSE(door.createDirectories("/a/b/file/below"));
}

TEST_F(SimulatedFileSystemTest, AppendingNeverMakesAFile) {
  EXPECT_FALSE(door.append("/a/file", "text"));
  host.files.write("/a/file", "one ");
  EXPECT_TRUE(door.append("/a/file", "two"));
  EXPECT_EQ(host.files.content("/a/file"), "one two");
}

TEST_F(SimulatedFileSystemTest, CopyingNeverReplaces) {
  host.files.write("/a/from", "new");
  host.files.write("/a/to", "old");
  EXPECT_FALSE(door.copy("/a/from", "/a/to"));
  EXPECT_FALSE(door.copy("/a/missing", "/a/other"));
  EXPECT_FALSE(door.copy("/a/from", "/missing/to"));
  EXPECT_TRUE(door.copy("/a/from", "/a/other"));
  EXPECT_EQ(host.files.content("/a/to"), "old");
  EXPECT_EQ(host.files.content("/a/other"), "new");
}

TEST_F(SimulatedFileSystemTest, ALockedFileCannotBeOpened) {
  host.files.write("/a/mappings.json", "{}");
  host.files.lock("/a/mappings.json");
  EXPECT_EQ(door.read("/a/mappings.json").error,
            "The file “mappings.json” could not be opened: Permission denied.");
  EXPECT_FALSE(door.append("/a/mappings.json", "text"));
  EXPECT_FALSE(door.copy("/a/mappings.json", "/a/to"));
  EXPECT_EQ(watch("/a/mappings.json"), nullptr);
  EXPECT_TRUE(door.replace("/a/mappings.json", "new")) << "the directory is what matters";
  EXPECT_EQ(door.read("/a/mappings.json").bytes, "new");
}

TEST_F(SimulatedFileSystemTest, NothingCanBeMadeBelowASealedDirectory) {
  host.files.write("/a/file", "text");
  host.files.seal("/a");
  EXPECT_FALSE(door.createDirectories("/a/b/c"));
  EXPECT_FALSE(door.replace("/a/file", "new"));
  EXPECT_FALSE(door.copy("/a/file", "/a/to"));
  EXPECT_TRUE(door.append("/a/file", " more"));
  EXPECT_TRUE(door.createDirectories("/a")) << "it is there already";
}

TEST_F(SimulatedFileSystemTest, AWatchStaysWithTheFileNotWithThePath) {
  host.files.write("/a/file", "one");
  const auto first = watch("/a/file");
  EXPECT_EQ(notifications(), 0);
  host.files.write("/a/file", "two");
  EXPECT_EQ(notifications(), 1);
  door.append("/a/file", " more");
  EXPECT_EQ(notifications(), 1);
  host.files.saveByRename("/a/file", "three");
  EXPECT_EQ(notifications(), 1) << "the file was deleted by the new one's coming";
  host.files.write("/a/file", "four");
  EXPECT_EQ(notifications(), 0) << "that is another file";

  const auto second = watch("/a/file");
  host.files.rename("/a/file", "/a/moved");
  EXPECT_EQ(notifications(), 1);
  host.files.remove("/a/moved");
  EXPECT_EQ(notifications(), 1);
  EXPECT_EQ(watch("/a/file"), nullptr) << "no such file any more";
}

TEST_F(SimulatedFileSystemTest, ACancelledOrDestroyedWatchHearsNothingNotEvenWhatIsOnItsWay) {
  host.files.write("/a/file", "one");
  const auto cancelled = watch("/a/file");
  auto destroyed = watch("/a/file");
  EXPECT_EQ(host.files.watchCount(), 2u);
  host.files.write("/a/file", "two");
  cancelled->cancel();
  cancelled->cancel();
  destroyed.reset();
  EXPECT_EQ(notifications(), 0);
  EXPECT_EQ(host.files.watchCount(), 0u);
}

}  // namespace
}  // namespace keyvora::simulated
