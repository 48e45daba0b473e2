// The whole application on a failing disk (full, read-only, missing), and with a clock that is set back.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>
#include <iostream>

#include "app/keyvora.h"
#include "log/log.h"
#include "mapping/mapping_store.h"
#include "platform/key_code.h"
#include "tap/key_sequence_tap.h"
#include "tests/support/disk_platform.h"

namespace keyvora::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ExitedWithCode;

constexpr auto excel = "com.microsoft.Excel";
constexpr auto oneSequence = R"({"version": 1, "tabs": {}, "sequences": [
    {"keys": "H B", "name": "Borders", "action": {"kind": "keystroke", "key": "b"}}]})";

/// The application in a scratch home.
class Running {
 public:
  explicit Running(const char* document = oneSequence) {
    fs::create_directories(mappings.parent_path());
    if (document != nullptr) test::write(mappings, document);
    disk.host.applications.start(excel, 77);
    disk.host.applications.front = excel;
  }

  void launch() {
    keyvora_ = Keyvora::create();
    keyvora_->applicationDidFinishLaunching();
    Log::drain(std::chrono::seconds(20));
  }

  /// Types a sequence. True if it fired and the ordinary keys around it arrived.
  bool works() {
    using platform::key_code::b, platform::key_code::h;
    auto& keyboard = disk.host.keyboard;
    if (keyboard.type(h) == platform::Verdict::swallow) return false;
    disk.host.trace.clear();
    keyboard.tapOption();
    keyboard.type(h);
    keyboard.type(b);
    Log::drain(std::chrono::seconds(20));
    const auto lines = disk.host.trace.logged();
    return keyboard.type(h) == platform::Verdict::pass && !lines.empty() &&
           lines.back() == "H B  Borders (keystroke)";
  }

  test::DiskPlatform disk;
  const fs::path mappings = disk.home.path() / "Library/Application Support/keyvora/mappings.json";
  const fs::path log = disk.home.path() / "Library/Logs/keyvora.log";

 private:
  platform::Scope scope_{disk.platform()};
  std::shared_ptr<Keyvora> keyvora_;
};

/// Limits the size of files, as on a full disk, until it is called again.
void limitFileSize(rlim_t bytes) {
  std::signal(SIGXFSZ, SIG_IGN);
  rlimit limit{};
  ::getrlimit(RLIMIT_FSIZE, &limit);
  limit.rlim_cur = bytes;
  ::setrlimit(RLIMIT_FSIZE, &limit);
}

/// Prints in the child which condition failed, for the reader of the parent's message.
bool held(bool condition, const char* what) {
  if (!condition) std::cerr << "does not hold: " << what << '\n';
  return condition;
}

#define HOLDS(condition) held((condition), #condition)

/// Evaluates a condition in a child process, which may change its limits and rights.
#define EXPECT_IN_CHILD(condition) \
  EXPECT_EXIT(std::_Exit((condition) ? EXIT_SUCCESS : EXIT_FAILURE), ExitedWithCode(EXIT_SUCCESS), "")

bool survivesAFullDisk() {
  Running running;
  limitFileSize(0);
  running.launch();
  const bool worked = HOLDS(running.works()) && HOLDS(test::content(running.log).value_or("").empty());
  limitFileSize(RLIM_INFINITY);
  return worked && HOLDS(running.works()) &&
         HOLDS(test::content(running.log)->ends_with("H B  Borders (keystroke)\n"));
}

TEST(FullDiskTest, CostsTheLogItsRecordsUntilThereIsRoomAgain) {
  EXPECT_IN_CHILD(survivesAFullDisk());
}

bool firstRunOnAFullDisk() {
  Running running(nullptr);
  const auto original = running.disk.home.path() / "default.json";
  test::write(original, oneSequence);
  for (auto& [directory, bundle] : running.disk.host.bundles.others) {
    for (auto& [name, path] : bundle.resources) path = original;
  }
  limitFileSize(10);
  running.launch();
  const bool clean = HOLDS(!fs::exists(running.mappings)) &&
                     HOLDS(MappingStore::shared().mapping().sequences.empty()) &&
                     HOLDS(KeySequenceTap::shared().installed());
  limitFileSize(RLIM_INFINITY);
  test::write(running.mappings, oneSequence);
  MappingStore::shared().reload();
  return clean && HOLDS(running.works());
}

TEST(FullDiskTest, LeavesNoHalfOfTheDefaultDocumentBehind) {
  EXPECT_IN_CHILD(firstRunOnAFullDisk());
}

bool survivesAHomeThatCannotBeWritten() {
  test::becomeNobody();
  Running running;
  fs::permissions(running.disk.home.path() / "Library", fs::perms::owner_read | fs::perms::owner_exec);
  running.launch();
  const bool worked = HOLDS(running.works()) && HOLDS(!fs::exists(running.log));
  fs::permissions(running.disk.home.path() / "Library", fs::perms::owner_all);
  return worked && HOLDS(running.works()) && HOLDS(fs::exists(running.log));
}

TEST(HomeTest, ThatCannotBeWrittenCostsTheLogOnly) {
  EXPECT_IN_CHILD(survivesAHomeThatCannotBeWritten());
}

TEST(HomeTest, ThatVanishesLeavesTheDocumentInForceAndIsUsedAgainWhenItIsBack) {
  Running running;
  running.launch();
  ASSERT_TRUE(running.works());
  const auto library = running.disk.home.path() / "Library";
  const auto elsewhere = running.disk.home.path() / "elsewhere";
  fs::rename(library, elsewhere);
  EXPECT_TRUE(running.works());
  running.disk.host.trace.clear();
  MappingStore::shared().reload();
  EXPECT_THAT(running.disk.host.trace.logged(),
              ::testing::ElementsAre("mappings.json not loaded, keeping the last good one: The file "
                                     "“mappings.json” could not be opened: No such file or directory."));
  EXPECT_TRUE(running.works());
  Log::drain(std::chrono::seconds(20));
  fs::remove_all(library);
  fs::rename(elsewhere, library);
  MappingStore::shared().reload();
  EXPECT_EQ(MappingStore::shared().lastError(), std::nullopt);
  EXPECT_TRUE(running.works());
  EXPECT_THAT(*test::content(running.log), ::testing::EndsWith("H B  Borders (keystroke)\n"));
}

struct LogPlace {
  const char* name;
  void (*make)(const fs::path& path);
  bool written;
};

class LogPlaceTest : public ::testing::TestWithParam<LogPlace> {};

TEST_P(LogPlaceTest, NeverStopsTheApplication) {
  Running running;
  fs::create_directories(running.log.parent_path());
  GetParam().make(running.log);
  running.launch();
  EXPECT_TRUE(running.works());
  const bool written = fs::is_regular_file(fs::symlink_status(running.log)) &&
                       test::content(running.log)->ends_with("H B  Borders (keystroke)\n");
  EXPECT_EQ(written, GetParam().written);
}

INSTANTIATE_TEST_SUITE_P(
    Log, LogPlaceTest,
    ::testing::Values(
        LogPlace{"Folder", [](const fs::path& path) { fs::create_directory(path); }, false},
        LogPlace{"LinkToItself", [](const fs::path& path) { fs::create_symlink(path, path); }, true},
        LogPlace{"LinkToNowhere", [](const fs::path& path) { fs::create_symlink("/nonexistent/log", path); },
                 true},
        LogPlace{"Pipe", [](const fs::path& path) { ASSERT_EQ(::mkfifo(path.c_str(), 0666), 0); }, true}),
    [](const auto& row) { return std::string(row.param.name); });

/// A wall clock that a test sets.
class SetClock final : public platform::Clock {
 public:
  std::string time = "2026-03-29 02:30:00";
  std::string localTime() override { return time; }
};

TEST(ClockTest, SetBackMovesTheStampsAndNothingElse) {
  simulated::Host host;
  SetClock clock;
  const auto& all = host.platform();
  const platform::Platform set{
      all.accessibility, all.application, all.applications, all.bundles,      clock,        all.console,
      all.diagnosis,     all.fileSystem,  all.keyboard,     all.loginService, all.mainLoop, all.process,
      all.queues,        all.scripts,     all.statusBar,    all.updates,      all.workspace};
  const platform::Scope scope(set);
  host.files.write("/Users/me/Library/Application Support/keyvora/mappings.json",
                   R"({"version": 1, "timeoutMilliseconds": 800, "tabs": {}, "sequences": [
      {"keys": "H", "name": "Home", "action": {"kind": "keystroke", "key": "h"}},
      {"keys": "HB", "name": "Borders", "action": {"kind": "keystroke", "key": "b"}}]})");
  host.applications.start(excel, 77);
  host.applications.front = excel;
  const auto keyvora = Keyvora::create();
  keyvora->applicationDidFinishLaunching();
  host.keyboard.tapOption();
  using platform::key_code::h;
  host.keyboard.type(h);
  clock.time = "2025-01-01 00:00:00";
  host.advance(0.799);
  EXPECT_EQ(host.trace.logged().back(), "armed: Option tapped in Excel");
  host.advance(0.002);
  EXPECT_EQ(host.trace.logged().back(), "H  Home (keystroke)");
  const auto log = *host.files.content("/Users/me/Library/Logs/keyvora.log");
  EXPECT_THAT(log, ::testing::HasSubstr("2026-03-29 02:30:00 armed: Option tapped in Excel\n"
                                        "2025-01-01 00:00:00 H  Home (keystroke)\n"));
}

}  // namespace
}  // namespace keyvora::testing
