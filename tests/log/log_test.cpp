#include "log/log.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>
#include <sstream>
#include <thread>

#include "hosts/simulated/host.h"

namespace keyvora {
namespace {

using simulated::Call;
using testing::ElementsAre;

const std::filesystem::path logPath = "/Users/me/Library/Logs/keyvora.log";

struct LogTest : testing::Test {
  simulated::Host host;
  platform::Scope scope{host.platform()};

  std::optional<std::string> file() { return host.files.content(logPath); }
};

TEST_F(LogTest, LiesInTheLogsFolderOfTheUsersLibrary) {
  EXPECT_EQ(Log::url(), logPath);
}

TEST_F(LogTest, TheFirstRecordMakesTheFolderAndTheFile) {
  Log::line("launch 1.2 (42)");
  EXPECT_TRUE(host.files.isDirectory(logPath.parent_path()));
  EXPECT_EQ(file(), "2026-01-02 03:04:05 launch 1.2 (42)\n");
}

TEST_F(LogTest, LaterRecordsAreAppendedEachWithTheTimeOfItsCall) {
  Log::line("one");
  host.advance(61);
  Log::line("two");
  EXPECT_EQ(file(), "2026-01-02 03:04:05 one\n2026-01-02 03:05:06 two\n");
}

TEST_F(LogTest, EveryMessageIsWrittenAsItIs) {
  const std::string messages[] = {"",
                                  " leading and trailing ",
                                  "two\nlines",
                                  "⌥ HF  Größe – 数",
                                  "%@ %d %s is no format",
                                  std::string("a\0b", 3),
                                  std::string(100'000, 'x')};
  std::string expected;
  std::vector<std::string> records;
  for (const auto& message : messages) {
    Log::line(message);
    expected += "2026-01-02 03:04:05 " + message + "\n";
    records.push_back("keyvora: " + message);
  }
  EXPECT_EQ(file(), expected);
  std::vector<std::string> written;
  for (const auto& entry : host.trace.of<simulated::trace::Console>()) written.push_back(entry.record);
  EXPECT_EQ(written, records);
}

TEST_F(LogTest, TheConsoleCopyComesFirstAndTheCallerNeverWaitsForTheFile) {
  host.queues.hold();
  Log::line("one");
  EXPECT_THAT(host.trace.logged(), ElementsAre("one"));
  EXPECT_EQ(file(), std::nullopt);
  EXPECT_EQ(host.failures.count(Call::createDirectories) + host.failures.count(Call::append) +
                host.failures.count(Call::replace),
            0u)
      << "no file work on the caller's thread";
  host.advance(5);
  Log::line("two");
  host.queues.release();
  EXPECT_EQ(file(), "2026-01-02 03:04:05 one\n2026-01-02 03:04:10 two\n") << "stamped when called";
}

TEST_F(LogTest, TheConsoleHasItsCopyBeforeTheRecordIsQueued) {
  std::vector<Call> order;
  host.failures.onCall = [&](Call call) {
    if (call == Call::writeConsole || call == Call::async) order.push_back(call);
  };
  Log::line("one");
  EXPECT_THAT(order, ElementsAre(Call::writeConsole, Call::async));
}

TEST_F(LogTest, ItsQueueIsNamedAfterTheProgram) {
  Log::line("one");
  Log::line("two");
  EXPECT_THAT(host.queues.labels(), ElementsAre("org.keyvora.keyvora.log"));
}

TEST_F(LogTest, AProgramWithoutAnIdentifierStillHasAQueue) {
  host.bundles.mainBundle.identifier = std::nullopt;
  Log::line("one");
  EXPECT_THAT(host.queues.labels(), ElementsAre("keyvora.log"));
}

TEST_F(LogTest, ADeletedFileIsMadeAnewAndHoldsOnlyWhatFollows) {
  Log::line("one");
  host.files.remove(logPath);
  Log::line("two");
  Log::line("three");
  EXPECT_EQ(file(), "2026-01-02 03:04:05 two\n2026-01-02 03:04:05 three\n");
}

TEST_F(LogTest, AFileThatCannotBeOpenedIsReplaced) {
  host.files.write(logPath, "precious\n");
  host.files.lock(logPath);
  Log::line("one");
  EXPECT_EQ(file(), "2026-01-02 03:04:05 one\n");
}

TEST_F(LogTest, TheFolderIsMadeForEveryRecord) {
  Log::line("one");
  Log::line("two");
  EXPECT_EQ(host.failures.count(Call::createDirectories), 2u);
}

/// One call fails for one record; the later records show whether the log recovered.
struct FailureRow {
  Call call;
  std::string file;
};

struct LogFailureTest : LogTest, testing::WithParamInterface<FailureRow> {};

TEST_P(LogFailureTest, NeverReachesTheCaller) {
  Log::line("one");
  host.failures.nth(GetParam().call, 1);
  Log::line("two");
  Log::line("three");
  EXPECT_EQ(file(), GetParam().file);
}

INSTANTIATE_TEST_SUITE_P(
    Calls, LogFailureTest,
    testing::Values(
        FailureRow{Call::createDirectories,
                   "2026-01-02 03:04:05 one\n2026-01-02 03:04:05 two\n2026-01-02 03:04:05 three\n"},
        FailureRow{Call::append, "2026-01-02 03:04:05 two\n2026-01-02 03:04:05 three\n"},
        FailureRow{Call::async, "2026-01-02 03:04:05 one\n2026-01-02 03:04:05 three\n"},
        FailureRow{Call::localTime, "2026-01-02 03:04:05 one\n two\n2026-01-02 03:04:05 three\n"},
        FailureRow{Call::writeConsole,
                   "2026-01-02 03:04:05 one\n2026-01-02 03:04:05 two\n2026-01-02 03:04:05 three\n"}),
    [](const auto& row) { return std::string(simulated::traits(row.param.call).name); });

TEST_F(LogTest, ARecordThatCanNeitherBeAppendedNorReplaceTheFileIsLost) {
  host.failures.always(Call::append);
  host.failures.nth(Call::replace, 1);
  Log::line("lost");
  EXPECT_EQ(file(), std::nullopt);
  Log::line("kept");
  EXPECT_EQ(file(), "2026-01-02 03:04:05 kept\n");
}

TEST_F(LogTest, AnEndOfTheProcessWaitsForTheRecordsForABoundedTime) {
  Log::line("one");
  EXPECT_EQ(host.failures.count(Call::drain), 0u);
  host.process.exit(0);
  EXPECT_EQ(host.failures.count(Call::drain), 1u);
  EXPECT_THAT(host.queues.drainLimits(), ElementsAre(std::chrono::seconds(2)));
}

TEST(LogScopeTest, AnEndOfTheProcessAfterTheScopeIsHarmless) {
  simulated::Host host;
  {
    const platform::Scope scope(host.platform());
    Log::line("one");
  }
  host.process.exit(0);
  EXPECT_EQ(host.files.content(logPath), "2026-01-02 03:04:05 one\n");
}

TEST(LogScopeTest, EachScopeHasALogOfItsOwn) {
  for (const char* library : {"/one", "/two"}) {
    simulated::Host host;
    host.files.library = library;
    const platform::Scope scope(host.platform());
    Log::line("hello");
    EXPECT_EQ(host.files.content(std::filesystem::path(library) / "Logs/keyvora.log"),
              "2026-01-02 03:04:05 hello\n");
  }
}

TEST_F(LogTest, TakesRecordsFromManyThreadsInTheOrderOfEach) {
  constexpr int threads = 4;
  constexpr int records = 50;
  std::vector<std::thread> callers;
  callers.reserve(threads);
  for (int thread = 0; thread < threads; ++thread) {
    callers.emplace_back([thread] {
      for (int i = 0; i < records; ++i) Log::line(std::to_string(thread) + " " + std::to_string(i));
    });
  }
  for (auto& caller : callers) caller.join();
  Log::drain(std::chrono::seconds(10));

  std::istringstream lines(file().value());
  const std::regex shape("2026-01-02 03:04:05 (\\d) (\\d+)");
  int next[threads] = {};
  int count = 0;
  for (std::string line; std::getline(lines, line); ++count) {
    std::smatch match;
    ASSERT_TRUE(std::regex_match(line, match, shape)) << line;
    EXPECT_EQ(std::stoi(match[2]), next[std::stoi(match[1])]++) << line;
  }
  EXPECT_EQ(count, threads * records);
}

struct LogDeathTest : LogTest {};

TEST_F(LogDeathTest, StopsWithoutAWordWhenTheUserHasNoLibrary) {
  host.files.library = std::nullopt;
  EXPECT_DEATH(Log::url(), "^$");
  EXPECT_DEATH(Log::line("one"), "^$");
}

}  // namespace
}  // namespace keyvora
