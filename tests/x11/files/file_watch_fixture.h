#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

#include "hosts/x11/files/file_system.h"
#include "hosts/x11/loop/main_loop.h"
#include "tests/x11/private_display.h"
#include "tests/x11/scratch.h"

namespace keyvora::x11 {

/// A file, a loop and a watch that counts its notifications.
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
    std::filesystem::rename(scratch.path() / "new", file);
  }

  ScratchDirectory scratch;
  std::filesystem::path file = scratch.path() / "mappings.json";
  MainLoop loop;
  FileSystem files{loop.wait()};
  int notified = 0;
  std::unique_ptr<platform::FileWatch> source;
};

}  // namespace keyvora::x11
