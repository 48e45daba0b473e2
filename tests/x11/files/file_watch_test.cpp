#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/inotify.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <fstream>
#include <functional>
#include <thread>
#include <utility>
#include <vector>

#include "hosts/posix/file_descriptor.h"
#include "hosts/x11/files/file_system.h"
#include "hosts/x11/main_loop.h"
#include "tests/x11/private_display.h"
#include "tests/x11/scratch.h"

namespace {

/// Run once each, just before and just after the next watch is set.
std::function<void()> beforeWatching;
std::function<void()> afterWatching;

/// The one in which the kernel reports about the watches.
int reportsDescriptor = -1;

}  // namespace

/// In place of the C library's.
// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name): the header's names are reserved
extern "C" int inotify_add_watch(int descriptor, const char* path, std::uint32_t events) noexcept {
  if (const auto run = std::exchange(beforeWatching, nullptr)) run();
  reportsDescriptor = descriptor;
  const auto number = static_cast<int>(syscall(SYS_inotify_add_watch, descriptor, path, events));
  if (const auto run = std::exchange(afterWatching, nullptr)) run();
  return number;
}

namespace keyvora::x11 {
namespace {

namespace fs = std::filesystem;

class FileWatchTest : public testing::Test {
 protected:
  FileWatchTest() { writeFile(file, "first"); }

  void watch() {
    source = files.watch(file, [this] { ++notified; });
  }

  /// Runs the loop until all pending notifications are delivered: a second watch, on a file of its own,
  /// reports a later change.
  void settle() {
    const auto marker = scratch.path() / "marker";
    writeFile(marker, "");
    bool heard = false;
    const auto other = files.watch(marker, [&heard] { heard = true; });
    writeFile(marker, "changed");
    ASSERT_TRUE(runUntil([&heard] { return heard; }));
    bool passed = false;
    loop.after({}, [&passed] { passed = true; });
    ASSERT_TRUE(runUntil([&passed] { return passed; }));
  }

  bool awaitNotification() {
    return runUntil([this] { return notified > 0; });
  }

  void replaceByRename(const std::string& text) const {
    writeFile(scratch.path() / "new", text);
    fs::rename(scratch.path() / "new", file);
  }

  ScratchDirectory scratch;
  fs::path file = scratch.path() / "mappings.json";
  MainLoop loop;
  FileSystem files{loop.wait()};
  int notified = 0;
  std::unique_ptr<platform::FileWatch> source;
};

TEST_F(FileWatchTest, AMissingFileCannotBeWatched) {
  file = scratch.path() / "missing";
  watch();
  EXPECT_EQ(source, nullptr);
}

TEST_F(FileWatchTest, SavingInPlaceIsHeardAgainAndAgain) {
  watch();
  for (int time = 0; time < 3; ++time) {
    notified = 0;
    writeFile(file, "save " + std::to_string(time));
    ASSERT_TRUE(awaitNotification());
    settle();
  }
}

TEST_F(FileWatchTest, ABurstThatIsReadAtOnceIsOneNotification) {
  watch();
  for (int time = 0; time < 50; ++time) writeFile(file, "save " + std::to_string(time));
  ASSERT_TRUE(awaitNotification());
  settle();
  EXPECT_EQ(notified, 1);
}

TEST_F(FileWatchTest, SavingLineByLineIsHeardAFewTimesAndItsEndToo) {
  using Clock = std::chrono::steady_clock;
  watch();
  const auto start = Clock::now();
  std::atomic<bool> saved = false;
  std::thread editor([&] {
    std::ofstream stream(file, std::ios::app);
    for (int line = 0; line < 300; ++line) {
      stream << "line" << std::endl;
      const auto next = start + line * std::chrono::microseconds(500);
      while (Clock::now() < next) std::this_thread::yield();
    }
    saved = true;
  });
  ASSERT_TRUE(runUntil([&] { return saved.load(); }));
  editor.join();
  const auto heardWhileSaving = notified;
  const auto milliseconds = (Clock::now() - start) / std::chrono::milliseconds(1);
  EXPECT_LE(heardWhileSaving, milliseconds / 5 + 1) << "at most one in 5 ms";
  writeFile(file, "end");
  EXPECT_TRUE(runUntil([&] { return notified > heardWhileSaving; }));
}

TEST_F(FileWatchTest, TruncationIsAWrite) {
  watch();
  fs::resize_file(file, 0);
  EXPECT_TRUE(awaitNotification());
}

struct Departure {
  const char* name;
  void (*happen)(const fs::path& file);
};

void PrintTo(const Departure& departure, std::ostream* stream) {
  *stream << departure.name;
}

/// The ways in which a path can lose its file.
class DepartureTest : public FileWatchTest, public testing::WithParamInterface<Departure> {
 protected:
  void expectOneNotificationAndThenNone() {
    watch();
    GetParam().happen(file);
    ASSERT_TRUE(awaitNotification());
    settle();
    EXPECT_EQ(notified, 1);

    writeFile(file, "whatever has its name now");
    fs::remove(file);
    settle();
    EXPECT_EQ(notified, 1) << "the watch stays with the file that is gone";
  }
};

TEST_P(DepartureTest, IsHeardOnce) {
  expectOneNotificationAndThenNone();
}

TEST_P(DepartureTest, IsHeardOnceWhileAProcessHasTheFileOpen) {
  const posix::FileDescriptor held(open(file.c_str(), O_RDWR | O_CLOEXEC));
  expectOneNotificationAndThenNone();
  EXPECT_EQ(write(held.number(), "x", 1), 1);
  settle();
  EXPECT_EQ(notified, 1);
}

TEST_P(DepartureTest, IsHeardOnceOfAFileWithAnotherHardLink) {
  fs::create_hard_link(file, scratch.path() / "link");
  expectOneNotificationAndThenNone();
}

INSTANTIATE_TEST_SUITE_P(
    FileWatch, DepartureTest,
    testing::Values(Departure{"Deletion", [](const fs::path& file) { fs::remove(file); }},
                    Departure{"Renaming",
                              [](const fs::path& file) { fs::rename(file, file.string() + "~"); }},
                    Departure{"Replacement",
                              [](const fs::path& file) {
                                writeFile(file.string() + ".new", "second");
                                fs::rename(file.string() + ".new", file);
                              }}),
    [](const auto& tested) { return tested.param.name; });

TEST_F(FileWatchTest, ChangedAttributesAreNoNews) {
  watch();
  fs::permissions(file, fs::perms::owner_all);
  timespec times[2] = {{1, 0}, {1, 0}};
  utimensat(AT_FDCWD, file.c_str(), times, 0);
  fs::create_hard_link(file, scratch.path() / "link");
  readFile(file);
  settle();
  EXPECT_EQ(notified, 0);
  fs::remove(scratch.path() / "link");
  EXPECT_TRUE(awaitNotification()) << "a deletion of the file by another of its names";
}

TEST_F(FileWatchTest, ASymbolicLinkIsFollowed) {
  const auto target = scratch.path() / "dotfiles" / "mappings.json";
  writeFile(target, "first");
  fs::remove(file);
  fs::create_symlink(target, file);
  watch();
  writeFile(target, "second");
  ASSERT_TRUE(awaitNotification());
  settle();
  notified = 0;
  fs::permissions(target, fs::perms::owner_all);
  settle();
  EXPECT_EQ(notified, 0);
  writeFile(target.string() + ".new", "third");
  fs::rename(target.string() + ".new", target);
  EXPECT_TRUE(awaitNotification());
}

TEST_F(FileWatchTest, NothingIsHeardAfterItIsCancelled) {
  watch();
  writeFile(file, "second");
  source->cancel();
  source->cancel();
  settle();
  watch();
  writeFile(file, "third");
  source.reset();
  settle();
  EXPECT_EQ(notified, 0);
}

TEST_F(FileWatchTest, AHandlerMayCancelAndDestroyItsWatch) {
  source = files.watch(file, [this] {
    ++notified;
    source->cancel();
    source.reset();
    ++notified;
  });
  writeFile(file, "second");
  ASSERT_TRUE(awaitNotification());
  settle();
  EXPECT_EQ(notified, 2);
}

TEST_F(FileWatchTest, AnUnchangedFileIsNoNewsForANewWatch) {
  files.read(file);
  watch();
  settle();
  EXPECT_EQ(notified, 0);
}

TEST_F(FileWatchTest, AReplacementBetweenReadingAndWatchingIsHeard) {
  files.read(file);
  replaceByRename("2nd..");
  watch();
  EXPECT_EQ(notified, 0) << "not from within the call";
  ASSERT_TRUE(awaitNotification());
  files.read(file);
  watch();
  settle();
  EXPECT_EQ(notified, 1);
}

TEST_F(FileWatchTest, AReplacementWhileTheWatchIsSetIsHeard) {
  for (auto* moment : {&beforeWatching, &afterWatching}) {
    const posix::FileDescriptor held(open(file.c_str(), O_RDONLY | O_CLOEXEC));
    notified = 0;
    files.read(file);
    *moment = [this] { replaceByRename("2nd.."); };
    watch();
    EXPECT_TRUE(awaitNotification());
    settle();
  }
}

TEST_F(FileWatchTest, AFileThatComesAfterAReadThatFailedIsHeard) {
  fs::remove(file);
  files.read(file);
  writeFile(file, "second");
  watch();
  ASSERT_TRUE(awaitNotification());
  files.read(file);
  watch();
  settle();
  EXPECT_EQ(notified, 1);
}

TEST_F(FileWatchTest, WhatCannotBeReadAndDoesNotChangeIsNoNews) {
  fs::remove(file);
  sockaddr_un address{AF_UNIX, {}};
  ASSERT_LT(file.native().size(), sizeof address.sun_path);
  std::memcpy(address.sun_path, file.c_str(), file.native().size() + 1);
  const posix::FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  ASSERT_EQ(bind(socket.number(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  EXPECT_TRUE(files.read(file).error);
  watch();
  settle();
  EXPECT_EQ(notified, 0);
}

TEST_F(FileWatchTest, EachOfTwoWatchesOfAFileHearsOfItAsLongAsItIsThere) {
  watch();
  writeFile(file, "second");
  int others = 0;
  auto other = files.watch(file, [&others] { ++others; });
  ASSERT_TRUE(awaitNotification());
  settle();
  EXPECT_EQ(others, 0) << "what was written before";

  writeFile(file, "third");
  ASSERT_TRUE(runUntil([&] { return notified == 2 && others == 1; }));
  settle();
  source.reset();
  writeFile(file, "fourth");
  ASSERT_TRUE(runUntil([&] { return others == 2; }));
  fs::remove(file);
  ASSERT_TRUE(runUntil([&] { return others == 3; }));
  EXPECT_EQ(notified, 2);
}

TEST_F(FileWatchTest, TwoWatchesOfAFileThatGetsAnotherNameHearNothingMore) {
  watch();
  int others = 0;
  const auto other = files.watch(file, [&others] { ++others; });
  const auto renamed = file.string() + "~";
  fs::rename(file, renamed);
  ASSERT_TRUE(runUntil([&] { return notified == 1 && others == 1; }));
  writeFile(renamed, "second");
  settle();
  EXPECT_EQ(notified, 1);
  EXPECT_EQ(others, 1);
}

TEST_F(FileWatchTest, WhatTheKernelHadNoRoomToReportIsHeard) {
  const auto gone = scratch.path() / "gone";
  writeFile(gone, "first");
  int goneNotified = 0;
  const auto watchOfGone = files.watch(gone, [&goneNotified] { ++goneNotified; });
  fs::rename(gone, gone.string() + "~");
  ASSERT_TRUE(runUntil([&] { return goneNotified == 1; }));

  // Two files by turns, since the kernel merges reports that are equal.
  std::vector<std::unique_ptr<platform::FileWatch>> others;
  std::vector<std::ofstream> streams;
  for (const char* name : {"one", "two"}) {
    writeFile(scratch.path() / name, "");
    others.push_back(files.watch(scratch.path() / name, [] {}));
    streams.emplace_back(scratch.path() / name);
  }
  watch();
  std::ifstream limit("/proc/sys/fs/inotify/max_queued_events");
  int room = 0;
  ASSERT_TRUE(limit >> room);
  for (int report = 0; report <= room; ++report) streams[std::size_t(report % 2)] << "x" << std::flush;
  writeFile(file, "second");
  EXPECT_TRUE(awaitNotification());
  settle();
  EXPECT_EQ(goneNotified, 1);
}

TEST_F(FileWatchTest, TheEndOfAWatchLeavesNothingToRead) {
  watch();
  settle();
  pollfd reports{reportsDescriptor, POLLIN, 0};
  source.reset();
  EXPECT_EQ(poll(&reports, 1, 0), 0) << "the loop would wake up for it";
  watch();
  fs::rename(file, file.string() + "~");
  ASSERT_TRUE(awaitNotification());
  EXPECT_EQ(poll(&reports, 1, 0), 0);
}

TEST_F(FileWatchTest, AWriteThatACancelledWatchWasAboutToReportIsHeard) {
  watch();
  files.read(file);
  writeFile(file, "2nd..");  // perhaps too soon for the file system's clock to show it
  source->cancel();
  watch();
  EXPECT_TRUE(awaitNotification());
}

TEST_F(FileWatchTest, AReplacementThatACancelledWatchWasAboutToReportIsHeard) {
  for (const bool isShared : {false, true}) {
    notified = 0;
    watch();
    const auto other = isShared ? files.watch(file, [] {}) : nullptr;
    files.read(file);
    replaceByRename("2nd..");
    source->cancel();
    EXPECT_EQ(notified, 0);
    watch();
    EXPECT_TRUE(awaitNotification());
    settle();
  }
}

TEST_F(FileWatchTest, AWriteThatOnlyTheCancelledWatchKnowsOfIsHeard) {
  struct stat before {};
  ASSERT_EQ(stat(file.c_str(), &before), 0);
  files.read(file);
  watch();
  writeFile(file, "2nd..");  // with the same length and, below, the same time stamp
  const timespec times[2] = {before.st_atim, before.st_mtim};
  ASSERT_EQ(utimensat(AT_FDCWD, file.c_str(), times, 0), 0);
  source->cancel();
  watch();
  EXPECT_TRUE(awaitNotification());
}

TEST_F(FileWatchTest, WatchesLeaveNoFilesOpen) {
  watch();  // for its first source the loop opens a file
  source.reset();
  const auto before = openFiles();
  for (int time = 0; time < 10; ++time) watch();
  source.reset();
  EXPECT_EQ(openFiles(), before);
}

}  // namespace
}  // namespace keyvora::x11
