#include "hosts/posix/file_operations.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>

#include "hosts/posix/file_descriptor.h"
#include "tests/support/scratch_home.h"

namespace keyvora::posix {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::ExitedWithCode;
using testing::IsEmpty;

struct PosixFileOperationsTest : testing::Test {
  test::ScratchDirectory scratch;
  test::ScratchHome files;

  void SetUp() override { mask = ::umask(022); }
  void TearDown() override { ::umask(mask); }

  void makePipe(const fs::path& path) { ASSERT_EQ(::mkfifo(path.c_str(), 0666), 0); }

 private:
  mode_t mask = 0;
};

/// For tests in which root has too many rights: true in a child process without them.
#define EXPECT_AS_NOBODY(condition)                            \
  EXPECT_EXIT(                                                 \
      {                                                        \
        test::becomeNobody();                                  \
        std::_Exit((condition) ? EXIT_SUCCESS : EXIT_FAILURE); \
      },                                                       \
      ExitedWithCode(EXIT_SUCCESS), "")

// --- read

TEST_F(PosixFileOperationsTest, ReadsAFileWhole) {
  const std::string contents[] = {"", "{}", std::string("a\0b", 3), std::string(1'000'000, 'x')};
  for (const auto& bytes : contents) {
    test::write(scratch / "file", bytes);
    const auto read = files.read(scratch / "file");
    EXPECT_EQ(read.error, std::nullopt);
    EXPECT_EQ(read.bytes, bytes);
  }
}

TEST_F(PosixFileOperationsTest, ReadsAFileWhoseSizeIsNotKnownBefore) {
  if (!fs::exists("/proc/self/status")) GTEST_SKIP() << "no such files on this system";
  const auto read = files.read("/proc/self/status");
  EXPECT_EQ(read.error, std::nullopt);
  EXPECT_THAT(read.bytes, testing::HasSubstr("Pid:"));
}

TEST_F(PosixFileOperationsTest, FollowsALinkToRead) {
  test::write(scratch / "file", "text");
  fs::create_symlink(scratch / "file", scratch / "link");
  EXPECT_EQ(files.read(scratch / "link").bytes, "text");
}

TEST_F(PosixFileOperationsTest, SaysWhyAFileCannotBeRead) {
  fs::create_directory(scratch / "directory");
  fs::create_symlink(scratch / "nowhere", scratch / "dangling");
  fs::create_symlink(scratch / "loop", scratch / "loop");
  makePipe(scratch / "pipe");
  test::write(scratch / "file", "");
  test::write(scratch / "huge", "");
  fs::resize_file(scratch / "huge", FileOperations::largestFile + 1);
  const struct {
    const char* name;
    const char* error;
  } rows[] = {
      {"missing.json", "The file “missing.json” could not be opened: No such file or directory."},
      {"dangling", "The file “dangling” could not be opened: No such file or directory."},
      {"file/below", "The file “below” could not be opened: Not a directory."},
      {"directory", "The file “directory” could not be opened: Is a directory."},
      {"loop", "The file “loop” could not be opened: Too many levels of symbolic links."},
      {"pipe", "The file “pipe” could not be opened: Not a regular file."},
      {"huge", "The file “huge” could not be read: File too large."},
  };
  for (const auto& row : rows) {
    const auto read = files.read(scratch / row.name);
    EXPECT_EQ(read.error, row.error);
    EXPECT_THAT(read.bytes, IsEmpty());
  }
}

TEST_F(PosixFileOperationsTest, SaysThatAFileIsNotForTheUserToRead) {
  test::write(scratch / "mappings.json", "{}");
  fs::permissions(scratch / "mappings.json", fs::perms::none);
  EXPECT_AS_NOBODY(files.read(scratch / "mappings.json").error ==
                   "The file “mappings.json” could not be opened: Permission denied.");
}

// --- append

TEST_F(PosixFileOperationsTest, AppendsToAFileThatIsThere) {
  test::write(scratch / "file", "one\n");
  EXPECT_TRUE(files.append(scratch / "file", "two\n"));
  EXPECT_TRUE(files.append(scratch / "file", std::string(1'000'000, 'x')));
  EXPECT_EQ(test::content(scratch / "file"), "one\ntwo\n" + std::string(1'000'000, 'x'));
}

TEST_F(PosixFileOperationsTest, AppendsThroughALink) {
  test::write(scratch / "file", "one\n");
  fs::create_symlink(scratch / "file", scratch / "link");
  EXPECT_TRUE(files.append(scratch / "link", "two\n"));
  EXPECT_EQ(test::content(scratch / "file"), "one\ntwo\n");
}

TEST_F(PosixFileOperationsTest, AppendingNeverMakesAFile) {
  fs::create_directory(scratch / "directory");
  fs::create_symlink(scratch / "nowhere", scratch / "dangling");
  makePipe(scratch / "pipe without a reader");
  const auto before = scratch.names();
  for (const char* name : {"missing", "missing/below", "directory", "dangling", "pipe without a reader"}) {
    EXPECT_FALSE(files.append(scratch / name, "text")) << name;
  }
  EXPECT_EQ(scratch.names(), before);
}

TEST_F(PosixFileOperationsTest, WhatIsNoRegularFileIsOpenedAndLeftAlone) {
  makePipe(scratch / "pipe");
  const FileDescriptor reader(::open((scratch / "pipe").c_str(), O_RDONLY | O_NONBLOCK));
  EXPECT_TRUE(files.append(scratch / "pipe", "text"));
  char byte = 0;
  EXPECT_EQ(::read(reader.number(), &byte, 1), 0) << "nothing was written";

  fs::create_symlink("/dev/null", scratch / "nothing");
  EXPECT_TRUE(files.append(scratch / "nothing", "text"));
  EXPECT_TRUE(fs::is_symlink(scratch / "nothing"));
}

TEST_F(PosixFileOperationsTest, AFileThatIsNotForTheUserToWriteCannotBeAppendedTo) {
  test::write(scratch / "file", "one\n");
  EXPECT_AS_NOBODY(!files.append(scratch / "file", "two\n"));
  EXPECT_EQ(test::content(scratch / "file"), "one\n");
}

// --- replace

TEST_F(PosixFileOperationsTest, ReplacesAFileByANewOne) {
  test::write(scratch / "file", "a long content before");
  const FileDescriptor before(::open((scratch / "file").c_str(), O_RDONLY));
  EXPECT_TRUE(files.replace(scratch / "file", "new"));
  EXPECT_EQ(test::content(scratch / "file"), "new");
  char byte = 0;
  EXPECT_EQ(::read(before.number(), &byte, 1), 1) << "who had it open still has the old one";
  EXPECT_EQ(byte, 'a');
  EXPECT_THAT(scratch.names(), ElementsAre("file"));
}

TEST_F(PosixFileOperationsTest, PermissionsStayAndTheOwnerCanWrite) {
  const struct {
    mode_t before;
    mode_t after;
  } rows[] = {{0644, 0644}, {0600, 0600}, {0664, 0664}, {0400, 0600}, {0000, 0600}, {04755, 0755}};
  for (const auto& row : rows) {
    test::write(scratch / "file", "old");
    ::chmod((scratch / "file").c_str(), row.before);
    EXPECT_TRUE(files.replace(scratch / "file", "new"));
    EXPECT_EQ(test::modeOf(scratch / "file"), row.after);
    fs::remove(scratch / "file");
  }
}

TEST_F(PosixFileOperationsTest, ANewFileFollowsTheProcessMask) {
  EXPECT_TRUE(files.replace(scratch / "usual", "text"));
  EXPECT_EQ(test::modeOf(scratch / "usual"), 0644u);
  ::umask(077);
  EXPECT_TRUE(files.replace(scratch / "private", "text"));
  EXPECT_EQ(test::modeOf(scratch / "private"), 0600u);
}

TEST_F(PosixFileOperationsTest, TheNewFileTakesTheNameOfALinkOrAPipe) {
  test::write(scratch / "target", "target");
  fs::create_symlink(scratch / "target", scratch / "link");
  fs::create_symlink(scratch / "nowhere", scratch / "dangling");
  makePipe(scratch / "pipe");
  for (const char* name : {"link", "dangling", "pipe"}) {
    EXPECT_TRUE(files.replace(scratch / name, "text")) << name;
    EXPECT_EQ(test::content(scratch / name), "text") << name;
    EXPECT_EQ(test::modeOf(scratch / name), 0644u) << name;
  }
  EXPECT_EQ(test::content(scratch / "target"), "target");
  EXPECT_THAT(scratch.names(), ElementsAre("dangling", "link", "pipe", "target"));
}

TEST_F(PosixFileOperationsTest, AReplacementThatFailsLeavesNothingBehind) {
  fs::create_directory(scratch / "directory");
  test::write(scratch / "file", "text");
  const auto before = scratch.names();
  for (const char* name : {"directory", "missing/below", "file/below"}) {
    EXPECT_FALSE(files.replace(scratch / name, "text")) << name;
  }
  EXPECT_EQ(scratch.names(), before);
}

TEST_F(PosixFileOperationsTest, NothingIsReplacedInADirectoryThatIsNotForTheUserToWrite) {
  test::write(scratch / "file", "text");
  fs::permissions(scratch.path(), fs::perms::owner_all | fs::perms::others_exec | fs::perms::others_read);
  EXPECT_AS_NOBODY(!files.replace(scratch / "file", "new"));
  EXPECT_EQ(test::content(scratch / "file"), "text");
}

/// As on a full disk: the first bytes are written, the rest is not.
void limitFileSize(rlim_t bytes) {
  const rlimit limit{bytes, bytes};
  ::setrlimit(RLIMIT_FSIZE, &limit);
  std::signal(SIGXFSZ, SIG_IGN);
}

TEST_F(PosixFileOperationsTest, AFullDiskCostsNeitherTheOldFileNorLeavesHalfOfTheNew) {
  test::write(scratch / "file", "old");
  EXPECT_EXIT(
      {
        limitFileSize(5);
        std::_Exit(files.replace(scratch / "file", "a longer text") ? EXIT_FAILURE : EXIT_SUCCESS);
      },
      ExitedWithCode(EXIT_SUCCESS), "");
  EXPECT_EQ(test::content(scratch / "file"), "old");
  EXPECT_THAT(scratch.names(), ElementsAre("file"));
}

TEST_F(PosixFileOperationsTest, OnAFullDiskARecordIsLostWholeAndWithoutAWord) {
  test::write(scratch / "file", "one\n");
  EXPECT_EXIT(
      {
        limitFileSize(6);
        std::_Exit(files.append(scratch / "file", "two\n") ? EXIT_SUCCESS : EXIT_FAILURE);
      },
      ExitedWithCode(EXIT_SUCCESS), "");
  EXPECT_EQ(test::content(scratch / "file"), "one\n");
}

// --- copy

TEST_F(PosixFileOperationsTest, CopiesAFileWithItsPermissionsToAnOwnerWhoCanWrite) {
  const struct {
    mode_t original;
    mode_t copy;
  } rows[] = {{0644, 0644}, {0600, 0600}, {0444, 0644}, {0755, 0755}};
  for (const auto& row : rows) {
    test::write(scratch / "from", "text");
    ::chmod((scratch / "from").c_str(), row.original);
    EXPECT_TRUE(files.copy(scratch / "from", scratch / "to"));
    EXPECT_EQ(test::content(scratch / "to"), "text");
    EXPECT_EQ(test::modeOf(scratch / "to"), row.copy);
    fs::remove(scratch / "from");
    fs::remove(scratch / "to");
  }
}

TEST_F(PosixFileOperationsTest, CopiesWhatALinkLeadsTo) {
  test::write(scratch / "file", "text");
  fs::create_symlink(scratch / "file", scratch / "link");
  EXPECT_TRUE(files.copy(scratch / "link", scratch / "to"));
  EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(scratch / "to")));
}

TEST_F(PosixFileOperationsTest, NeverCopiesOverAnything) {
  test::write(scratch / "from", "new");
  test::write(scratch / "file", "old");
  fs::create_directory(scratch / "directory");
  fs::create_symlink(scratch / "nowhere", scratch / "dangling");
  const auto before = scratch.names();
  for (const char* name : {"file", "directory", "dangling", "missing/below"}) {
    EXPECT_FALSE(files.copy(scratch / "from", scratch / name)) << name;
  }
  EXPECT_EQ(test::content(scratch / "file"), "old");
  EXPECT_EQ(scratch.names(), before);
}

TEST_F(PosixFileOperationsTest, CopiesOnlyRegularFiles) {
  fs::create_directory(scratch / "directory");
  makePipe(scratch / "pipe");
  for (const char* name : {"missing", "directory", "pipe"}) {
    EXPECT_FALSE(files.copy(scratch / name, scratch / "to")) << name;
  }
  EXPECT_FALSE(fs::exists(scratch / "to"));
}

TEST_F(PosixFileOperationsTest, NothingHasTheNameOfTheCopyBeforeTheCopyIsWhole) {
  test::write(scratch / "from", "a longer text");
  EXPECT_EXIT(
      {
        limitFileSize(5);
        std::signal(SIGXFSZ, SIG_DFL);  // ends the process during a write
        files.copy(scratch / "from", scratch / "to");
      },
      ::testing::KilledBySignal(SIGXFSZ), "");
  EXPECT_FALSE(fs::exists(scratch / "to"));
}

TEST_F(PosixFileOperationsTest, ACopyThatIsNotWholeIsRemoved) {
  test::write(scratch / "from", "a longer text");
  EXPECT_EXIT(
      {
        limitFileSize(5);
        std::_Exit(files.copy(scratch / "from", scratch / "to") ? EXIT_FAILURE : EXIT_SUCCESS);
      },
      ExitedWithCode(EXIT_SUCCESS), "");
  EXPECT_THAT(scratch.names(), ElementsAre("from"));
}

// --- directories

TEST_F(PosixFileOperationsTest, CreatesADirectoryAndItsParents) {
  EXPECT_TRUE(files.createDirectories(scratch / "one/two/three"));
  EXPECT_TRUE(fs::is_directory(scratch / "one/two/three"));
  EXPECT_TRUE(files.createDirectories(scratch / "one/two")) << "it is there already";
}

TEST_F(PosixFileOperationsTest, CreatesNoDirectoryWhereSomethingElseIs) {
  test::write(scratch / "file", "text");
  fs::create_symlink(scratch / "nowhere", scratch / "dangling");
  for (const char* name : {"file", "file/below", "dangling", "dangling/below"}) {
    EXPECT_FALSE(files.createDirectories(scratch / name)) << name;
  }
}

TEST_F(PosixFileOperationsTest, FollowsALinkToADirectory) {
  fs::create_directory(scratch / "elsewhere");
  fs::create_directory_symlink(scratch / "elsewhere", scratch / "link");
  EXPECT_TRUE(files.createDirectories(scratch / "link/below"));
  EXPECT_TRUE(fs::is_directory(scratch / "elsewhere/below"));
}

TEST_F(PosixFileOperationsTest, SaysWhatExists) {
  test::write(scratch / "file", "");
  fs::create_symlink(scratch / "file", scratch / "link");
  fs::create_symlink(scratch / "nowhere", scratch / "dangling");
  EXPECT_TRUE(files.exists(scratch / "file"));
  EXPECT_TRUE(files.exists(scratch / "link"));
  EXPECT_TRUE(files.exists(scratch.path()));
  EXPECT_FALSE(files.exists(scratch / "dangling"));
  EXPECT_FALSE(files.exists(scratch / "missing"));
  EXPECT_FALSE(files.exists(scratch / "file/below"));
}

}  // namespace
}  // namespace keyvora::posix
