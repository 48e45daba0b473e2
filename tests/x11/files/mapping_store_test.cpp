#include "mapping/mapping_store.h"

#include <fcntl.h>
#include <glib.h>
#include <gtest/gtest.h>

#include "hosts/posix/file_descriptor.h"
#include "hosts/simulated/host.h"
#include "hosts/x11/files/file_system.h"
#include "hosts/x11/loop/main_loop.h"
#include "tests/x11/loop/turn_counter.h"
#include "tests/x11/private_display.h"
#include "tests/x11/scratch.h"

namespace keyvora::x11 {
namespace {

namespace fs = std::filesystem;

/// The store on the real loop, real files and the real watch; everything else is simulated.
class MappingStoreTest : public testing::Test {
 protected:
  MappingStoreTest() {
    save(0);
    store.emplace();
    store->onReload = [this](const Mapping&) { ++reloads; };
  }

  /// A document identified by its timeout. All have the same length.
  static std::string document(int number) {
    return R"({"version": 1, "timeoutMilliseconds": )" + std::to_string(1000 + number) +
           R"(, "tabs": {}, "sequences": []})";
  }

  void save(int number) const { writeFile(file, document(number)); }

  void saveByRename(int number) const {
    const auto written = file.string() + ".new";
    writeFile(written, document(number));
    fs::rename(written, file);
  }

  bool awaitDocument(int number) {
    return runUntil([&] { return store->mapping().timeoutMilliseconds == 1000 + number; });
  }

  /// Waits until nothing was reloaded for longer than the delay of a reload.
  void awaitQuiet() {
    int seen = -1;
    while (std::exchange(seen, reloads) != reloads) {
      bool over = false;
      loop.after(platform::Seconds(0.3), [&over] { over = true; });
      runUntil([&over] { return over; });
    }
  }

  ScratchDirectory scratch;
  Variable home{"HOME", scratch.path().string()};
  fs::path file = scratch.path() / "Library" / "Application Support" / "keyvora" / "mappings.json";
  simulated::Host host;
  MainLoop loop;
  FileSystem files{loop.wait()};
  platform::Platform platform{host.accessibility,
                              host.application,
                              host.applications,
                              host.bundles,
                              host.clock,
                              host.console,
                              host.diagnosis,
                              files,
                              host.keyboard,
                              host.loginService,
                              loop,
                              host.process,
                              host.queues,
                              host.scripts,
                              host.statusBar,
                              host.updates,
                              host.workspace};
  platform::Scope scope{platform};
  int reloads = 0;
  std::optional<MappingStore> store;
};

TEST_F(MappingStoreTest, NothingIsReloadedUntilTheFileChanges) {
  EXPECT_EQ(store->url(), file);
  awaitQuiet();
  EXPECT_EQ(reloads, 0);
}

TEST_F(MappingStoreTest, SavesOfEveryKindAreFollowedOneAfterAnother) {
  int number = 0;
  for (int time = 0; time < 2; ++time) {
    save(++number);
    ASSERT_TRUE(awaitDocument(number)) << "in place";
    saveByRename(++number);
    ASSERT_TRUE(awaitDocument(number)) << "by rename";
    const posix::FileDescriptor held(open(file.c_str(), O_RDONLY | O_CLOEXEC));
    saveByRename(++number);
    ASSERT_TRUE(awaitDocument(number)) << "by rename, with the old file held open";
    fs::remove(file);
    save(++number);
    ASSERT_TRUE(awaitDocument(number)) << "deleted and made anew";
  }
  EXPECT_EQ(store->lastError(), std::nullopt);
}

TEST_F(MappingStoreTest, OfAHundredSavesInARowTheLastOneWins) {
  int number = 0;
  for (const bool byRename : {false, true}) {
    for (int time = 0; time < 100; ++time) {
      ++number;
      if (byRename) {
        saveByRename(number);
      } else {
        save(number);
      }
      // Some changes come during the reloads that the first ones caused.
      g_main_context_iteration(nullptr, FALSE);
      if (time % 10 == 0) g_usleep(10'000);
    }
    EXPECT_TRUE(awaitDocument(number));
    awaitQuiet();
    EXPECT_EQ(store->mapping().timeoutMilliseconds, 1000 + number);
    EXPECT_EQ(store->lastError(), std::nullopt);
  }
}

TEST_F(MappingStoreTest, ASaveDuringTheReloadIsNotLost) {
  for (const bool byRename : {false, true}) {
    reloads = 0;
    store->onReload = [&](const Mapping&) {
      if (reloads++ > 0) return;
      if (byRename) {
        saveByRename(2);
      } else {
        save(2);
      }
    };
    save(1);
    EXPECT_TRUE(awaitDocument(2));
  }
}

TEST_F(MappingStoreTest, ASymbolicLinkToTheFileIsFollowed) {
  const auto target = scratch.path() / "dotfiles" / "keyvora.json";
  writeFile(target, document(1));
  fs::remove(file);
  fs::create_symlink(target, file);
  ASSERT_TRUE(awaitDocument(1));
  awaitQuiet();
  writeFile(target, document(2));
  EXPECT_TRUE(awaitDocument(2));
}

TEST_F(MappingStoreTest, AChangeOfPermissionsIsNoChange) {
  fs::permissions(file, fs::perms::owner_all);
  awaitQuiet();
  EXPECT_EQ(reloads, 0);
}

TEST_F(MappingStoreTest, AfterADeletionTheLastDocumentStaysAndNothingIsWatched) {
  fs::remove(file);
  ASSERT_TRUE(runUntil([this] { return store->lastError().has_value(); }));
  EXPECT_EQ(store->mapping().timeoutMilliseconds, 1000);
  save(1);
  awaitQuiet();
  EXPECT_EQ(store->mapping().timeoutMilliseconds, 1000);
  store->reload();
  EXPECT_EQ(store->mapping().timeoutMilliseconds, 1001);
}

TEST_F(MappingStoreTest, ASaveTakesOneTurnOfTheLoop) {
  awaitQuiet();
  saveByRename(1);
  const TurnCounter counter;
  while (reloads == 0) g_main_context_iteration(nullptr, TRUE);
  EXPECT_EQ(store->mapping().timeoutMilliseconds, 1001);
  EXPECT_EQ(counter.turns(), 1) << "the reload's";
}

}  // namespace
}  // namespace keyvora::x11
