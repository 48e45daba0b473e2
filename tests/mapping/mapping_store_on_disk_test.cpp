#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "mapping/mapping_store.h"
#include "tests/support/disk_platform.h"

/// The store on real files.
namespace keyvora {
namespace {

namespace fs = std::filesystem;

const std::string notLoaded = "mappings.json not loaded, keeping the last good one: ";

struct MappingStoreOnDiskTest : testing::Test {
  test::DiskPlatform disk;
  platform::Scope scope{disk.platform()};
  const fs::path directory = disk.home.path() / "Library/Application Support/keyvora";
  const fs::path path = directory / "mappings.json";

  void SetUp() override {
    auto& bundle = disk.host.bundles.others.begin()->second;
    bundle.resources["mappings.json"] = disk.home.path() / "default.json";
    test::write(disk.home.path() / "default.json", document(7));
    fs::permissions(disk.home.path() / "default.json",
                    fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
  }

  /// A document identified by its timeout.
  static std::string document(int timeout) {
    return R"({"version": 1, "timeoutMilliseconds": )" + std::to_string(timeout) +
           R"(, "tabs": {}, "sequences": []})";
  }

  static auto timeout() { return MappingStore::shared().mapping().timeoutMilliseconds; }
  static auto error() { return MappingStore::shared().lastError(); }
  static void reload() { MappingStore::shared().reload(); }
};

TEST_F(MappingStoreOnDiskTest, TheFirstRunCopiesTheDefaultDocumentForTheUserToEdit) {
  EXPECT_EQ(timeout(), 7);
  EXPECT_EQ(MappingStore::shared().url(), path);
  EXPECT_EQ(test::content(path), document(7));
  EXPECT_EQ(test::modeOf(path) & 0600, 0600u);
}

TEST_F(MappingStoreOnDiskTest, AnExistingFileIsKept) {
  fs::create_directories(directory);
  test::write(path, document(8));
  EXPECT_EQ(timeout(), 8);
  EXPECT_EQ(test::content(path), document(8));
}

TEST_F(MappingStoreOnDiskTest, AnInvalidFileGivesTheFallbackAndIsKept) {
  fs::create_directories(directory);
  test::write(path, "{");
  EXPECT_EQ(timeout(), 1500);
  EXPECT_EQ(error(), std::nullopt);
  EXPECT_EQ(test::content(path), "{");
}

TEST_F(MappingStoreOnDiskTest, ReloadsWhateverTheWayTheFileWasSaved) {
  EXPECT_EQ(timeout(), 7);
  test::write(path, document(8));
  reload();
  EXPECT_EQ(timeout(), 8);
  test::write(directory / "new", document(9));
  fs::rename(directory / "new", path);
  reload();
  EXPECT_EQ(timeout(), 9);
}

TEST_F(MappingStoreOnDiskTest, SaysWhyTheFileCannotBeReadAndKeepsTheDocument) {
  EXPECT_EQ(timeout(), 7);
  fs::remove(path);
  reload();
  EXPECT_EQ(error(), "The file “mappings.json” could not be opened: No such file or directory.");
  fs::create_directory(path);
  reload();
  EXPECT_EQ(error(), "The file “mappings.json” could not be opened: Is a directory.");
  EXPECT_EQ(timeout(), 7);
  fs::remove(path);
  test::write(path, document(8));
  reload();
  EXPECT_EQ(error(), std::nullopt);
  EXPECT_EQ(timeout(), 8);
}

TEST_F(MappingStoreOnDiskTest, ALinkedFileIsReadThroughItsLink) {
  fs::create_directories(directory);
  test::write(disk.home.path() / "dotfiles.json", document(8));
  fs::create_symlink(disk.home.path() / "dotfiles.json", path);
  EXPECT_EQ(timeout(), 8);
  test::write(disk.home.path() / "dotfiles.json", document(9));
  reload();
  EXPECT_EQ(timeout(), 9);
}

TEST_F(MappingStoreOnDiskTest, ADanglingLinkIsNeitherReplacedNorWrittenThrough) {
  fs::create_directories(directory);
  fs::create_symlink(disk.home.path() / "nowhere", path);
  EXPECT_EQ(timeout(), 1500);
  EXPECT_TRUE(fs::is_symlink(path));
  EXPECT_FALSE(fs::exists(disk.home.path() / "nowhere"));
}

TEST_F(MappingStoreOnDiskTest, AFileInPlaceOfTheFolderGivesTheFallback) {
  fs::create_directories(directory.parent_path());
  test::write(directory, "precious");
  EXPECT_EQ(timeout(), 1500);
  EXPECT_EQ(test::content(directory), "precious");
  reload();
  EXPECT_EQ(error(), "The file “mappings.json” could not be opened: Not a directory.");
}

/// For tests in which root has too many rights: true in a child process without them, which creates the
/// store again.
#define EXPECT_AS_NOBODY(condition)                            \
  EXPECT_EXIT(                                                 \
      {                                                        \
        test::becomeNobody();                                  \
        std::_Exit((condition) ? EXIT_SUCCESS : EXIT_FAILURE); \
      },                                                       \
      testing::ExitedWithCode(EXIT_SUCCESS), "")

TEST_F(MappingStoreOnDiskTest, AFileThatIsNotForTheUserToReadGivesTheFallbackAndThenTheReason) {
  fs::create_directories(directory);
  test::write(path, document(8));
  fs::permissions(path, fs::perms::none);
  const std::string reason = "The file “mappings.json” could not be opened: Permission denied.";
  EXPECT_AS_NOBODY(timeout() == 1500 && !error() && (reload(), error() == reason));
}

TEST_F(MappingStoreOnDiskTest, AFolderThatIsNotForTheUserToWriteGivesTheFallback) {
  fs::create_directories(directory);
  fs::permissions(directory, fs::perms::owner_all | fs::perms::others_read | fs::perms::others_exec);
  EXPECT_AS_NOBODY(timeout() == 1500 && !error());
  EXPECT_FALSE(fs::exists(path));
}

}  // namespace
}  // namespace keyvora
