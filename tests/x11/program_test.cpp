#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <chrono>
#include <csignal>

#include "hosts/x11/applications/desktop_windows.h"
#include "hosts/x11/diagnosis/diagnosis.h"
#include "hosts/x11/display.h"
#include "tests/x11/new_clients.h"
#include "tests/x11/private_session.h"
#include "tests/x11/screen.h"

/// The whole program, from start to end.
namespace keyvora::x11 {
namespace {

/// Whether a program waits for the end of the keyvora that there is.
bool isInstanceAwaited() {
  const auto connection = Connection::open("");
  const ErrorTrap trap(connection->get());  // it may be gone by the time that it is asked about
  const Window owner = XGetSelectionOwner(connection->get(), connection->atom("_KEYVORA_INSTANCE"));
  XWindowAttributes attributes{};
  return owner != None && XGetWindowAttributes(connection->get(), owner, &attributes) != 0 &&
         (attributes.all_event_masks & StructureNotifyMask) != 0;
}

class ProgramTest : public testing::Test {
 protected:
  /// Starts the program with these arguments and additions to its environment.
  void start(const std::string& arguments = "", const std::vector<std::string>& environment = {}) {
    program = Child({"sh", "-c", "exec \"$0\" " + arguments + " 2> \"$HOME/errors\"", KEYVORA_PROGRAM},
                    environment);
  }

  std::string errors() const { return readFile(session.home() / "errors"); }
  std::string log() const { return readFile(session.home() / "Library" / "Logs" / "keyvora.log"); }

  bool awaitLog(const std::string& text) {
    return runUntil([&] { return log().find(text) != std::string::npos; });
  }

  /// Saves a document with so many sequences.
  void saveMappings(int sequences) {
    std::string list;
    for (int number = 0; number < sequences; ++number) {
      list += std::string(number > 0 ? "," : "") + R"({"keys": "Q)" + std::to_string(number) +
              R"(", "name": "Do", "action": {"kind": "keytips", "keys": "A"}})";
    }
    writeFile(session.home() / "Library" / "Application Support" / "keyvora" / "mappings.json",
              R"({"version": 1, "tabs": {}, "sequences": [)" + list + "]}");
  }

  /// The program's exit status; -1 when it did not end, or was killed by a signal.
  int endStatus() {
    const int status = program.wait();
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  PrivateSession session;
  Child program;
};

TEST_F(ProgramTest, WithoutADisplayItSaysSoWhateverItsArguments) {
  for (const auto* arguments : {"", "--help", "--display=:0 --version"}) {
    start(arguments, {"DISPLAY="});
    EXPECT_EQ(endStatus(), 1) << arguments;
    EXPECT_EQ(errors(),
              "keyvora: There is no X display: DISPLAY is not set. keyvora needs one to see the keyboard, "
              "and ends.\n");
  }
  start("", {"DISPLAY=:4000"});
  EXPECT_EQ(endStatus(), 1);
  EXPECT_EQ(
      errors(),
      "keyvora: The X display :4000 cannot be opened. keyvora needs one to see the keyboard, and ends.\n");
}

TEST_F(ProgramTest, ArgumentsOfTheToolkitMeanNothing) {
  start("--help --display=:4000 --g-fatal-warnings --gtk-module=none");
  EXPECT_TRUE(awaitLog("tap installed"));
  kill(program.pid(), SIGTERM);
  EXPECT_EQ(endStatus(), 0);
}

TEST_F(ProgramTest, NoOpenGlDriverIsLoadedEvenAsTheFirstToolkitProgramOfTheDisplay) {
  start();
  ASSERT_TRUE(awaitLog("tap installed"));
  session.startTray();
  ASSERT_TRUE(Screen().awaitWindow("⌥")) << "the toolkit is open";
  const auto mapped = readFile("/proc/" + std::to_string(program.pid()) + "/maps");
  EXPECT_EQ(mapped.find("/libGL"), std::string::npos);
  kill(program.pid(), SIGTERM);
  EXPECT_EQ(endStatus(), 0);
}

TEST_F(ProgramTest, SignalsEndItNormallyWithTheLogWritten) {
  for (const int signal : {SIGTERM, SIGINT}) {
    std::filesystem::remove_all(session.home() / "Library");
    start();
    ASSERT_TRUE(awaitLog("tap installed"));
    kill(program.pid(), signal);
    EXPECT_EQ(endStatus(), 0);
    EXPECT_NE(log().find(" launch "), std::string::npos);
  }
}

TEST_F(ProgramTest, UnderWaylandItRunsOnXwaylandAndSaysWhatWorks) {
  start("", {"WAYLAND_DISPLAY=wayland-0", "GDK_BACKEND=wayland"});
  EXPECT_TRUE(awaitLog("tap installed"));
  EXPECT_TRUE(
      awaitLog("Wayland: This is a Wayland session: key sequences work in applications that run through "
               "XWayland, and in no others. Start the spreadsheet with \"GDK_BACKEND=x11 gnumeric\""));
  EXPECT_LT(log().find("tap installed"), log().find("Wayland: "));
  kill(program.pid(), SIGTERM);
  EXPECT_EQ(endStatus(), 0);
}

TEST_F(ProgramTest, AWaylandCompositorThatTellsNoWindowsIsNamed) {
  const auto connection = Connection::open("");
  XDeleteProperty(connection->get(), connection->root(), listProperty(connection->get()));
  XSync(connection->get(), False);
  start("", {"WAYLAND_DISPLAY=wayland-0"});
  EXPECT_TRUE(awaitLog("tap installed"));
  EXPECT_TRUE(awaitLog(
      "no window manager: This is a Wayland session whose compositor does not tell which X window is in "
      "front: key sequences do not work. They do in the sessions of GNOME and KDE.\n"));
  kill(program.pid(), SIGTERM);
  EXPECT_EQ(endStatus(), 0);
}

TEST_F(ProgramTest, WhatKeepsSequencesFromWorkingIsLoggedAfterTheTapsLine) {
  const auto folder = session.home() / "Library" / "Application Support" / "keyvora";
  writeFile(folder / "mappings.json", R"({"version": 1, "tabs": {}, "sequences": []})");
  std::filesystem::permissions(folder / "mappings.json", std::filesystem::perms::others_write,
                               std::filesystem::perm_options::add);
  start();
  EXPECT_TRUE(awaitLog("mappings.json is writable by all: "));
  EXPECT_LT(log().find("tap installed"), log().find("mappings.json is writable by all: "));
  kill(program.pid(), SIGTERM);
  EXPECT_EQ(endStatus(), 0);
}

TEST_F(ProgramTest, StartedBeforeTheWindowManagerItReportsNoneThatIsMissing) {
  auto& display = const_cast<PrivateDisplay&>(session.display());
  display.endWindowManager();
  const auto folder = session.home() / "Library" / "Application Support" / "keyvora";
  writeFile(folder / "mappings.json", R"({"version": 1, "tabs": {}, "sequences": []})");
  std::filesystem::permissions(folder / "mappings.json", std::filesystem::perms::others_write,
                               std::filesystem::perm_options::add);
  const auto started = std::chrono::steady_clock::now();
  start();
  ASSERT_TRUE(awaitLog("tap installed"));
  display.startWindowManager();
  EXPECT_TRUE(awaitLog("mappings.json is writable by all: "));
  // A machine that is too busy to start one in that time has none for keyvora either.
  if (std::chrono::steady_clock::now() - started < Diagnosis::startUp) {
    EXPECT_EQ(log().find("no window manager"), std::string::npos) << log();
  }
  kill(program.pid(), SIGTERM);
  EXPECT_EQ(endStatus(), 0);
}

TEST_F(ProgramTest, WithoutAWindowManagerItSaysSoInTheEnd) {
  const_cast<PrivateDisplay&>(session.display()).endWindowManager();
  start();
  ASSERT_TRUE(
      awaitLog("no window manager: Nothing tells which window is in front, so no sequence starts. Start a "
               "window manager that sets _NET_ACTIVE_WINDOW and _NET_CLIENT_LIST, such as openbox.\n"));
  EXPECT_LT(log().find("tap installed"), log().find("no window manager: "));
  kill(program.pid(), SIGTERM);
  EXPECT_EQ(endStatus(), 0);
}

TEST_F(ProgramTest, ASecondOneSaysSoAndEndsAndTheFirstWorksOn) {
  session.startTray();
  start();
  ASSERT_TRUE(awaitLog("tap installed"));
  ASSERT_TRUE(Screen().awaitWindow("⌥"));
  const auto log = readFile(session.home() / "Library" / "Logs" / "keyvora.log");
  Child first = std::move(program);

  start();
  EXPECT_EQ(endStatus(), 3);
  EXPECT_EQ(errors(), "keyvora: another keyvora is running\n");
  const auto added = this->log().substr(log.size());
  EXPECT_EQ(added.find(" another keyvora is running\n"), std::string("2026-01-02 03:04:05").size()) << added;
  EXPECT_EQ(std::ranges::count(added, '\n'), 1) << added;

  writeFile(session.home() / "Library" / "Application Support" / "keyvora" / "mappings.json", "{");
  EXPECT_TRUE(awaitLog("mappings.json not loaded, keeping the last good one: ")) << "the first is at work";
  kill(first.pid(), SIGTERM);
  EXPECT_EQ(first.wait(), 0);
}

TEST_F(ProgramTest, AKilledOneIsInNobodysWay) {
  start();
  ASSERT_TRUE(awaitLog("tap installed"));
  program.kill();
  std::filesystem::remove_all(session.home() / "Library" / "Logs");
  start();
  EXPECT_TRUE(awaitLog("tap installed"));
  kill(program.pid(), SIGTERM);
  EXPECT_EQ(endStatus(), 0);
}

TEST_F(ProgramTest, AnEndingOneIsWaitedFor) {
  // The first ends while the second waits. On a busy machine it may take longer to end than the second waits.
  bool replaced = false;
  for (int attempt = 0; !replaced && attempt < 5; ++attempt) {
    std::filesystem::remove_all(session.home() / "Library" / "Logs");
    start();
    ASSERT_TRUE(awaitLog("tap installed"));
    Child first = std::move(program);
    std::filesystem::remove_all(session.home() / "Library" / "Logs");
    kill(first.pid(), SIGSTOP);
    start();
    ASSERT_TRUE(runUntil([] { return isInstanceAwaited(); }));
    kill(first.pid(), SIGTERM);
    kill(first.pid(), SIGCONT);
    EXPECT_EQ(first.wait(), 0);
    ASSERT_TRUE(runUntil([this] { return !log().empty(); }));
    replaced = log().find("another keyvora is running") == std::string::npos;
    if (!replaced) {
      EXPECT_EQ(endStatus(), 3);
    }
  }
  EXPECT_TRUE(replaced);
  EXPECT_TRUE(awaitLog("tap installed"));
  kill(program.pid(), SIGTERM);
  EXPECT_EQ(endStatus(), 0);
}

TEST_F(ProgramTest, AReloadOpensNoConnectionToTheDisplay) {
  session.startTray();
  start();
  ASSERT_TRUE(awaitLog("tap installed"));
  ASSERT_TRUE(Screen().awaitWindow("⌥")) << "the toolkit is open";
  // What is left of the start may open some. A reload that does, does every time.
  int opened = -1;
  for (int sequences = 0; opened != 0 && sequences < 5; ++sequences) {
    NewClients clients;
    saveMappings(sequences);
    ASSERT_TRUE(awaitLog("mappings reloaded, " + std::to_string(sequences) + " sequences"));
    const auto ours = Connection::open("");
    ASSERT_TRUE(runUntil([&] { return clients.count() > 0; }));
    opened = clients.count() - 1;
  }
  EXPECT_EQ(opened, 0);
  kill(program.pid(), SIGTERM);
  EXPECT_EQ(endStatus(), 0);
}

TEST_F(ProgramTest, AProbeRunsBesideIt) {
  start();
  ASSERT_TRUE(awaitLog("tap installed"));
  Child first = std::move(program);
  start("--probe-updates");
  EXPECT_EQ(endStatus(), 1) << "this build has no feed, and that is an answer";
  EXPECT_EQ(log().find("another keyvora is running"), std::string::npos);
  kill(first.pid(), SIGTERM);
  EXPECT_EQ(first.wait(), 0);
}

TEST_F(ProgramTest, TheEndOfTheMessageBusesIsSurvived) {
  start();
  ASSERT_TRUE(awaitLog("tap installed"));
  session.endBuses();
  std::filesystem::remove(session.home() / "Library" / "Logs" / "keyvora.log");
  writeFile(session.home() / "Library" / "Application Support" / "keyvora" / "mappings.json", "{");
  EXPECT_TRUE(awaitLog("mappings.json not loaded, keeping the last good one: ")) << "still at work";
  kill(program.pid(), SIGTERM);
  EXPECT_EQ(endStatus(), 0);
}

TEST_F(ProgramTest, TheEndOfTheDisplayIsItsOwn) {
  start();
  ASSERT_TRUE(awaitLog("tap installed"));
  session.endDisplay();
  EXPECT_EQ(endStatus(), 1);
  EXPECT_NE(errors().find("keyvora: The X display is gone, and keyvora ends with it.\n"), std::string::npos);
}

}  // namespace
}  // namespace keyvora::x11
