#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <fstream>
#include <thread>
#include <vector>

#include "hosts/posix/file_descriptor.h"
#include "tests/x11/files/file_watch_fixture.h"

namespace keyvora::x11 {
namespace {

namespace fs = std::filesystem;

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

}  // namespace
}  // namespace keyvora::x11
