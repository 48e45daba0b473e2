// Each call of the door fails: always, and once at each of its calls. A table has the expected log. In all
// cases no key outside a sequence is lost, and everything works again afterwards.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "tests/faults/session.h"

namespace keyvora::testing {
namespace {

using simulated::allCalls;
using simulated::Call;

/// Fatal: the user's directories are missing, or, at the first start, the program's own resources, which
/// means a broken installation.
constexpr bool isFatal(Call call) {
  return call == Call::applicationSupportDirectory || call == Call::libraryDirectory ||
         call == Call::resourceDirectory || call == Call::openBundle;
}

const auto& survivable() {
  static const auto calls = [] {
    std::vector<Call> result;
    for (const auto& each : allCalls) {
      if (!isFatal(each.call)) result.push_back(each.call);
    }
    return result;
  }();
  return calls;
}

std::string nameOf(const ::testing::TestParamInfo<Call>& call) {
  return std::string(simulated::traits(call.param).name);
}

/// How the log differs from one without failures while a call always fails.
struct Difference {
  std::vector<std::string> without;
  std::vector<std::string> with;
};

const std::string armed = "armed: Option tapped in Excel";
const std::string tapInstalled = "tap installed, 6 sequences, log at /Users/me/Library/Logs/keyvora.log";
const std::string noneInstalled = "tap installed, 0 sequences, log at /Users/me/Library/Logs/keyvora.log";
const std::string reloaded = "mappings reloaded, 6 sequences";

std::map<Call, Difference> differences();

std::vector<std::string> joined(std::vector<std::string> lines, const std::vector<std::string>& more) {
  lines.insert(lines.end(), more.begin(), more.end());
  return lines;
}

/// The keys swallowed after the sequence should have ended: at most one, which ends it.
int keysTaken(std::initializer_list<Call> failing) {
  const auto fails = [&failing](Call call) { return std::ranges::find(failing, call) != failing.end(); };
  // Timers never fire, so the waiting sequence is still open.
  if (fails(Call::schedule)) return 1;
  // Events cannot carry the program's marker, and there is no process to post them to: the tap takes the
  // Option key of the key tips for the user's.
  if (fails(Call::createSource) && fails(Call::running)) return 1;
  return 0;
}

/// `from`, without the first occurrence of each of `lines`.
std::vector<std::string> minus(std::vector<std::string> from, const std::vector<std::string>& lines) {
  for (const auto& line : lines) {
    const auto found = std::ranges::find(from, line);
    EXPECT_NE(found, from.end()) << line;
    if (found != from.end()) from.erase(found);
  }
  return from;
}

class DoorFailureTest : public ::testing::TestWithParam<Call> {};

TEST(DoorTest, TheFaultlessSessionIsWhatTheOthersAreHeldAgainst) {
  Session session;
  session.play();
  EXPECT_EQ(session.host.trace.logged(), faultlessLog());
  EXPECT_EQ(session.logFile(), faultlessLog());
  EXPECT_GT(session.ordinaryKeys, 20);
  EXPECT_EQ(session.lostKeys, 0);
  EXPECT_EQ(session.missedKeys, 0);
}

TEST(DoorTest, TheSessionsMakeEveryCall) {
  Session session;
  session.play();
  session.probe();
  session.host.accessibility.trusted = false;
  session.host.failures.nth(Call::createTap, 1);
  session.play();
  session.host.applications.quit(77);  // so that keys are posted at the hardware level
  session.play();
  for (const auto& each : allCalls) {
    if (each.call == Call::facts) continue;  // called by the tools only
    EXPECT_GT(session.host.failures.count(each.call), 0U) << each.name;
  }
}

TEST_P(DoorFailureTest, ForGoodItShowsInTheLogAsTheTableSaysAndLosesNoKey) {
  Session session;
  session.host.failures.always(GetParam());
  session.play();
  const auto table = differences();
  const auto found = table.find(GetParam());
  const auto difference = found == table.end() ? Difference{} : found->second;
  auto expected = minus(faultlessLog(), difference.without);
  expected.insert(expected.end(), difference.with.begin(), difference.with.end());
  EXPECT_THAT(session.host.trace.logged(), ::testing::UnorderedElementsAreArray(expected));
  if (GetParam() == Call::writeConsole) {
    EXPECT_EQ(session.logFile(), faultlessLog());
  }
  EXPECT_EQ(session.lostKeys, keysTaken({GetParam()}));
  session.probe();
}

TEST_P(DoorFailureTest, OnceAtAnyOfItsTimesItLosesNoKeyAndTheRestGoesOn) {
  Session faultless;
  faultless.play();
  const auto times = faultless.host.failures.count(GetParam());
  for (std::uint64_t n = 1; n <= times; ++n) {
    SCOPED_TRACE("failing at time " + std::to_string(n));
    Session session;
    session.host.failures.nth(GetParam(), n);
    session.play();
    EXPECT_LE(session.lostKeys, keysTaken({GetParam()}));
    EXPECT_TRUE(session.installed);
    EXPECT_TRUE(session.recovers(true));
  }
}

TEST_P(DoorFailureTest, AfterItHasPassedEverythingWorksAgainWithoutARestart) {
  Session session;
  session.host.failures.always(GetParam());
  EXPECT_TRUE(session.recovers(false));
  EXPECT_LE(session.lostKeys, keysTaken({GetParam()}));
}

INSTANTIATE_TEST_SUITE_P(Every, DoorFailureTest, ::testing::ValuesIn(survivable()), nameOf);

/// In pairs: one call with every later one.
class DoorPairsTest : public ::testing::TestWithParam<Call> {};

TEST_P(DoorPairsTest, LoseNoKeyAndPass) {
  for (const auto second : survivable()) {
    if (second <= GetParam()) continue;
    SCOPED_TRACE(std::string("and ") + std::string(simulated::traits(second).name));
    Session session;
    session.host.failures.always(GetParam());
    session.host.failures.always(second);
    const bool recovered = session.recovers(false);
    EXPECT_LE(session.lostKeys, keysTaken({GetParam(), second}));
    EXPECT_TRUE(recovered || session.recovers(true));
  }
}

INSTANTIATE_TEST_SUITE_P(OfEvery, DoorPairsTest, ::testing::ValuesIn(survivable()), nameOf);

using DoorDeathTest = ::testing::TestWithParam<Call>;

TEST_P(DoorDeathTest, StopsTheProcessAtOnce) {
  EXPECT_DEATH(
      {
        Session session;
        session.host.failures.always(GetParam());
        session.play();
      },
      "");
}

INSTANTIATE_TEST_SUITE_P(Fatal, DoorDeathTest,
                         ::testing::Values(Call::applicationSupportDirectory, Call::libraryDirectory),
                         nameOf);

std::map<Call, Difference> differences() {
  const std::string reading =
      "mappings.json not loaded, keeping the last good one: The file “mappings.json” could not be opened: "
      "Input/output error.";
  const std::vector<std::string> afterLaunch = [] {
    const auto lines = faultlessLog();
    return std::vector(lines.begin() + 3, lines.end() - 2);
  }();
  const std::vector<std::string> fired{tapInstalled,     "H B  Borders (keytips hb)", "V  Values (keystroke)",
                                       "M  Save (menu)", "S  Beep (applescript)",     "A  Short (keystroke)",
                                       "no sequence HH"};
  const std::vector<std::string> nothingFired{noneInstalled,   "no sequence H", "no sequence V",
                                              "no sequence M", "no sequence S", "no sequence A",
                                              "no sequence H", "no sequence H"};
  // Without a document at the start the file is not watched; the menu's command reads it.
  const Difference noDocument{joined(fired, {reloaded}), nothingFired};
  return {
      {Call::isTrustedPrompting, {{"accessibility granted"}, {"accessibility not granted yet"}}},
      {Call::elementAttribute, {{"M  Save (menu)"}, {"M  Save FAILED: no menu bar"}}},
      {Call::running, {{"M  Save (menu)"}, {"M  Save FAILED: Excel is not running"}}},
      {Call::frontmost, {afterLaunch, {}}},
      {Call::information, {{"launch 1.2 (42)"}, {"launch dev (0)"}}},
      {Call::resource, noDocument},
      {Call::createDirectories, noDocument},
      {Call::copy, noDocument},
      {Call::read, {joined(fired, {reloaded, reloaded}), joined(nothingFired, {reading, reading})}},
      {Call::watch, {{reloaded}, {}}},
      {Call::writeConsole, {faultlessLog(), {}}},  // the file has all lines
      {Call::createTap,
       {joined(afterLaunch, {tapInstalled}), {"tap not installed yet: waiting for the Accessibility grant"}}},
      {Call::enableTap, {afterLaunch, {}}},
      {Call::createEvent, {{"V  Values (keystroke)", "A  Short (keystroke)"}, {}}},
      {Call::loginStatus, {}},
      {Call::registerProgram,
       {{},
        {"login item register failed: Operation not permitted",
         "login item register failed: Operation not permitted"}}},
      {Call::unregisterProgram, {{}, {"login item unregister failed: Operation not permitted"}}},
      {Call::schedule, {{"A  Short (keystroke)"}, {"no sequence AH"}}},
      {Call::after, {{reloaded}, {}}},
      {Call::walk, {{"H B  Borders (keytips hb)"}, {}}},
      {Call::runScript, {{"S  Beep (applescript)"}, {"S  Beep FAILED: unknown error"}}},
      {Call::setMenu, {{reloaded}, {}}},  // there is no menu with the command
  };
}

}  // namespace
}  // namespace keyvora::testing
