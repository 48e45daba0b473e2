#import "hosts/macos/file_system.h"

#include <gtest/gtest.h>

#include "tests/macos/run_loop.h"
#include "tests/macos/scratch_directory.h"

namespace keyvora::macos {
namespace {

TEST(FileSystem, FindsTheUsersDirectories) {
  FileSystem files;
  EXPECT_TRUE(files.applicationSupportDirectory()->string().ends_with("/Library/Application Support"));
  EXPECT_TRUE(files.libraryDirectory()->string().ends_with("/Library"));
}

TEST(FileSystem, ReadsAWholeFile) {
  FileSystem files;
  const ScratchDirectory scratch;
  const auto contents = files.read(scratch.write("file", std::string("a\0b", 3)));
  EXPECT_EQ(contents.bytes, std::string("a\0b", 3));
  EXPECT_FALSE(contents.error);
}

TEST(FileSystem, SaysWhyAFileCannotBeRead) {
  FileSystem files;
  const ScratchDirectory scratch;
  const auto contents = files.read(scratch.path() / "missing");
  ASSERT_TRUE(contents.error);
  EXPECT_NE(contents.error->find("missing"), std::string::npos);
}

TEST(FileSystem, AppendsOnlyToAFileThatExists) {
  FileSystem files;
  const ScratchDirectory scratch;
  EXPECT_FALSE(files.append(scratch.path() / "log", "one\n"));
  EXPECT_TRUE(files.replace(scratch.path() / "log", "one\n"));
  EXPECT_TRUE(files.append(scratch.path() / "log", "two\n"));
  EXPECT_EQ(files.read(scratch.path() / "log").bytes, "one\ntwo\n");
}

TEST(FileSystem, CopiesOnlyWhereNothingIsYet) {
  FileSystem files;
  const ScratchDirectory scratch;
  const auto from = scratch.write("from", "new");
  EXPECT_TRUE(files.copy(from, scratch.path() / "to"));
  EXPECT_FALSE(files.copy(from, scratch.write("taken", "old")));
  EXPECT_EQ(files.read(scratch.path() / "taken").bytes, "old");
}

TEST(FileSystem, CreatesDirectoriesAndAcceptsThoseThatExist) {
  FileSystem files;
  const ScratchDirectory scratch;
  EXPECT_TRUE(files.createDirectories(scratch.path() / "a/b"));
  EXPECT_TRUE(files.createDirectories(scratch.path() / "a/b"));
  EXPECT_FALSE(files.createDirectories(scratch.write("file", "") / "below"));
}

TEST(FileWatch, HearsASaveInPlace) {
  FileSystem files;
  const ScratchDirectory scratch;
  const auto path = scratch.write("mappings.json", "1");
  int heard = 0;
  const auto watch = files.watch(path, [&] { ++heard; });
  ASSERT_TRUE(watch);
  scratch.write("mappings.json", "2");
  EXPECT_TRUE(runLoopUntil([&] { return heard > 0; }));
}

TEST(FileWatch, HearsAnAtomicSaveAndIsDeafAfterwards) {
  FileSystem files;
  const ScratchDirectory scratch;
  const auto path = scratch.write("mappings.json", "1");
  int heard = 0;
  const auto watch = files.watch(path, [&] { ++heard; });
  ASSERT_TRUE(files.replace(path, "2"));
  EXPECT_TRUE(runLoopUntil([&] { return heard > 0; }));
  runLoopUntil([] { return false; }, 0.1);
  const int before = heard;
  scratch.write("mappings.json", "3");
  EXPECT_FALSE(runLoopUntil([&] { return heard > before; }, 0.2));
}

TEST(FileWatch, HearsADeletionAndNothingOnceCancelled) {
  FileSystem files;
  const ScratchDirectory scratch;
  const auto path = scratch.write("mappings.json", "1");
  int heard = 0;
  const auto first = files.watch(path, [&] { ++heard; });
  const auto second = files.watch(path, [&] { heard += 100; });
  second->cancel();
  second->cancel();
  std::filesystem::remove(path);
  EXPECT_TRUE(runLoopUntil([&] { return heard > 0; }));
  EXPECT_LT(heard, 100);
}

TEST(FileWatch, IsRefusedForAMissingFile) {
  FileSystem files;
  EXPECT_FALSE(files.watch(ScratchDirectory().path() / "missing", [] {}));
}

}  // namespace
}  // namespace keyvora::macos
