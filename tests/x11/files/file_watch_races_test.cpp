#include <fcntl.h>
#include <poll.h>
#include <sys/inotify.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>
#include <functional>
#include <utility>

#include "hosts/posix/file_descriptor.h"
#include "tests/x11/files/file_watch_fixture.h"

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
  watch();  // what all watches share stays open
  source.reset();
  const auto before = openFiles();
  for (int time = 0; time < 10; ++time) watch();
  source.reset();
  EXPECT_EQ(openFiles(), before);
}

}  // namespace
}  // namespace keyvora::x11
