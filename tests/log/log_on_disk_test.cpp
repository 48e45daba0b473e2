#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>
#include <sstream>
#include <thread>

#include "hosts/posix/clock.h"
#include "hosts/posix/file_descriptor.h"
#include "log/log.h"
#include "tests/support/disk_platform.h"

/// The log on real files, on a real thread.
namespace keyvora {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::MatchesRegex;

struct LogOnDiskTest : testing::Test {
  test::DiskPlatform disk;
  platform::Scope scope{disk.platform()};
  const fs::path logs = disk.home.path() / "Library/Logs";
  const fs::path path = logs / "keyvora.log";

  static void log(const std::string& message) {
    Log::line(message);
    // The disk is in a different state for each record.
    Log::drain(std::chrono::seconds(20));
  }

  /// The messages in the file, without time stamps; fails on a line of another form.
  [[nodiscard]] std::vector<std::string> messages() const {
    std::istringstream lines(test::content(path).value_or(""));
    const std::regex shape(R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d (.*))");
    std::vector<std::string> found;
    for (std::string line; std::getline(lines, line);) {
      std::smatch match;
      EXPECT_TRUE(std::regex_match(line, match, shape)) << line;
      found.push_back(match[1]);
    }
    return found;
  }
};

TEST_F(LogOnDiskTest, TheFirstRecordMakesFolderAndFile) {
  EXPECT_EQ(Log::url(), path);
  log("one");
  log("two");
  EXPECT_THAT(messages(), ElementsAre("one", "two"));
  EXPECT_THAT(*test::content(path), MatchesRegex("[-0-9]+ [:0-9]+ one\n[-0-9]+ [:0-9]+ two\n"));
}

TEST_F(LogOnDiskTest, AFileThatIsDeletedOrMovedAwayIsMadeAnew) {
  log("one");
  fs::remove(path);
  log("two");
  EXPECT_THAT(messages(), ElementsAre("two"));
  fs::rename(path, logs / "keyvora.log.1");
  log("three");
  EXPECT_THAT(messages(), ElementsAre("three"));
  fs::remove_all(logs);
  log("four");
  EXPECT_THAT(messages(), ElementsAre("four"));
}

TEST_F(LogOnDiskTest, AnEmptiedFileGoesOn) {
  log("one");
  fs::resize_file(path, 0);
  log("two");
  EXPECT_THAT(messages(), ElementsAre("two"));
}

TEST_F(LogOnDiskTest, ALinkToAFileIsFollowed) {
  fs::create_directories(logs);
  test::write(disk.home.path() / "elsewhere", "");
  fs::create_symlink(disk.home.path() / "elsewhere", path);
  log("one");
  EXPECT_THAT(messages(), ElementsAre("one"));
  EXPECT_TRUE(fs::is_symlink(path));
}

TEST_F(LogOnDiskTest, ADanglingLinkGivesWayToAFile) {
  fs::create_directories(logs);
  fs::create_symlink(disk.home.path() / "nowhere", path);
  log("one");
  log("two");
  EXPECT_THAT(messages(), ElementsAre("one", "two"));
  EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(path)));
  EXPECT_FALSE(fs::exists(disk.home.path() / "nowhere"));
}

TEST_F(LogOnDiskTest, ALinkToTheNullDeviceTurnsTheFileOff) {
  fs::create_directories(logs);
  fs::create_symlink("/dev/null", path);
  log("one");
  EXPECT_TRUE(fs::is_symlink(path));
  EXPECT_TRUE(fs::is_character_file(path));
}

TEST_F(LogOnDiskTest, AFolderInPlaceOfTheFileCostsTheRecordsAndNothingElse) {
  fs::create_directories(path / "below");
  log("lost");
  EXPECT_TRUE(fs::is_directory(path / "below"));
  EXPECT_EQ(std::distance(fs::directory_iterator(logs), {}), 1);
  fs::remove_all(path);
  log("kept");
  EXPECT_THAT(messages(), ElementsAre("kept"));
}

TEST_F(LogOnDiskTest, AFileInPlaceOfTheFolderCostsTheRecordsAndNothingElse) {
  fs::create_directories(logs.parent_path());
  test::write(logs, "precious");
  log("lost");
  EXPECT_EQ(test::content(logs), "precious");
}

TEST_F(LogOnDiskTest, APipeThatNobodyReadsGivesWayToAFile) {
  fs::create_directories(logs);
  ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
  log("one");
  log("two");
  EXPECT_THAT(messages(), ElementsAre("one", "two"));
}

TEST_F(LogOnDiskTest, ThreadsLogInTheOrderOfEachWithoutMixingWithinALine) {
  constexpr int threads = 8;
  constexpr int records = 100;
  std::vector<std::thread> callers;
  callers.reserve(threads);
  for (int thread = 0; thread < threads; ++thread) {
    callers.emplace_back([thread] {
      for (int i = 0; i < records; ++i) {
        Log::line(std::to_string(thread) + " " + std::to_string(i) + " " + std::string(200, 'x'));
      }
    });
  }
  for (auto& caller : callers) caller.join();
  Log::drain(std::chrono::seconds(60));
  int next[threads] = {};
  const auto found = messages();
  for (const auto& message : found) {
    std::istringstream words(message);
    int thread = 0;
    int i = 0;
    std::string rest;
    words >> thread >> i >> rest;
    EXPECT_EQ(i, next[thread]++) << message;
    EXPECT_EQ(rest, std::string(200, 'x'));
  }
  EXPECT_EQ(found.size(), static_cast<std::size_t>(threads * records));
}

TEST(LogPermissionTest, AFileThatIsNotForTheUserToWriteIsReplacedAndThenAppendedTo) {
  EXPECT_EXIT(
      {
        test::becomeNobody();
        test::DiskPlatform disk;
        const platform::Scope scope(disk.platform());
        const auto path = disk.home.path() / "Library/Logs/keyvora.log";
        fs::create_directories(path.parent_path());
        test::write(path, "before\n");
        fs::permissions(path, fs::perms::owner_read);
        Log::line("one");
        Log::line("two");
        Log::drain(std::chrono::seconds(20));
        const std::regex shape("[-0-9]+ [:0-9]+ one\n[-0-9]+ [:0-9]+ two\n");
        std::_Exit(std::regex_match(*test::content(path), shape) ? EXIT_SUCCESS : EXIT_FAILURE);
      },
      testing::ExitedWithCode(EXIT_SUCCESS), "");
}

TEST(LogEndTest, TheEndOfTheScopeWritesWhatWasLogged) {
  test::DiskPlatform disk;
  {
    const platform::Scope scope(disk.platform());
    for (int i = 0; i < 200; ++i) Log::line("record");
  }
  const auto text = test::content(disk.home.path() / "Library/Logs/keyvora.log").value_or("");
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 200);
}

}  // namespace
}  // namespace keyvora
