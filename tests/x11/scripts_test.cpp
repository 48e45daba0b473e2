#include "hosts/x11/scripts.h"

#include <fcntl.h>
#include <glib-unix.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <thread>

#include "hosts/posix/file_descriptor.h"
#include "hosts/x11/ending_signals.h"
#include "hosts/x11/keyboard/current_tap.h"
#include "tests/x11/scratch.h"

namespace keyvora::x11 {
namespace {

class ScriptsTest : public testing::Test {
 protected:
  /// Puts a replacement for osascript on PATH that runs these shell commands.
  void standIn(const std::string& commands) { writeProgram(scratch.path() / "bin" / "osascript", commands); }

  platform::ScriptOutcome run(const std::string& source = "beep") { return scripts.run(source); }

  std::string output() const { return readFile(scratch.path() / "output"); }

  ScratchDirectory scratch;
  Variable path{"PATH", (scratch.path() / "bin").string() + ":/usr/bin:/bin"};
  Variable target{"OUTPUT", (scratch.path() / "output").string()};
  CurrentTap tap;
  Scripts scripts{tap};
};

TEST_F(ScriptsTest, TheSourceGoesToStandardInputAsItIs) {
  standIn(R"(cat > "$OUTPUT")");
  const std::string source = "tell application \"Microsoft Excel\"\n\t-- ⌥ \\ $HOME `x`\nend tell";
  const auto outcome = run(source);
  EXPECT_TRUE(outcome.succeeded);
  EXPECT_EQ(outcome.message, std::nullopt);
  EXPECT_EQ(output(), source);
}

TEST_F(ScriptsTest, ASourceOfAnySizeArrives) {
  standIn(R"(wc -c > "$OUTPUT")");
  EXPECT_TRUE(run(std::string(3'000'000, 'x')).succeeded);
  EXPECT_EQ(output(), "3000000\n");
  EXPECT_TRUE(run("").succeeded);
  EXPECT_EQ(output(), "0\n");
}

TEST_F(ScriptsTest, AProgramThatDoesNotReadItsInputDoesNoHarm) {
  standIn("exit 0");
  EXPECT_TRUE(run(std::string(3'000'000, 'x')).succeeded);
}

TEST_F(ScriptsTest, AFailureSaysWhatTheProgramSaid) {
  const struct {
    const char* commands;
    std::optional<std::string> message;
  } cases[] = {
      {"echo 'execution error: no such cell (-1728)' >&2; exit 1", "execution error: no such cell (-1728)"},
      {"printf 'one\\ntwo\\n\\n' >&2; exit 1", "one\ntwo"},
      {"echo 'on standard output'; exit 1", std::nullopt},
      {"printf ' \\n' >&2; exit 3", std::nullopt},
      {"printf 'bad \\377 byte' >&2; exit 1", "bad \xEF\xBF\xBD byte"},
      {"kill -9 $$", "osascript was ended by signal 9"},
      {"echo 'its last words' >&2; kill -9 $$", "its last words"},
  };
  for (const auto& [commands, message] : cases) {
    standIn(commands);
    const auto outcome = run();
    EXPECT_FALSE(outcome.succeeded) << commands;
    EXPECT_EQ(outcome.message, message) << commands;
  }
}

TEST_F(ScriptsTest, AFailureIsOneEvenIfTheStarterIgnoredTheEndsOfItsChildren) {
  standIn("exit 1");
  std::signal(SIGCHLD, SIG_IGN);
  EXPECT_FALSE(run().succeeded);
  std::signal(SIGCHLD, SIG_DFL);
}

TEST_F(ScriptsTest, WhatASuccessfulScriptSaysIsPassedOver) {
  standIn("echo warning >&2; echo result");
  const auto outcome = run();
  EXPECT_TRUE(outcome.succeeded);
  EXPECT_EQ(outcome.message, std::nullopt);
}

TEST_F(ScriptsTest, AFloodOfMessagesIsCutShort) {
  standIn("yes 'the same again' | head -c 5000000 >&2; exit 1");
  const auto outcome = run();
  EXPECT_FALSE(outcome.succeeded);
  ASSERT_TRUE(outcome.message);
  EXPECT_LE(outcome.message->size(), 4096u);
  EXPECT_EQ(outcome.message->find("the same again\nthe same again"), 0u);
}

TEST_F(ScriptsTest, WithoutOsascriptTheMessageSaysSo) {
  const Variable empty("PATH", (scratch.path() / "nowhere").string());
  const auto outcome = run();
  EXPECT_FALSE(outcome.succeeded);
  EXPECT_EQ(outcome.message, "there is no program named osascript on PATH to run AppleScript with");
}

TEST_F(ScriptsTest, AnOsascriptThatCannotBeStartedIsAFailureWithTheReason) {
  writeFile(scratch.path() / "bin" / "osascript", "not executable");
  const Variable only("PATH", (scratch.path() / "bin").string());
  const auto outcome = run();
  EXPECT_FALSE(outcome.succeeded);
  EXPECT_EQ(outcome.message, "osascript cannot be started: Permission denied");
}

TEST_F(ScriptsTest, ItWaitsForTheScriptAndForNothingThatItLeavesBehind) {
  standIn(R"(sleep 60 & echo $! > "$OUTPUT"; sleep 0.1; echo late >&2; exit 1)");
  const auto outcome = run();
  EXPECT_EQ(outcome.message, "late");
  const auto left = static_cast<pid_t>(std::stol(output()));
  EXPECT_EQ(kill(left, 0), 0) << "still at work, and not waited for";
  kill(left, SIGKILL);
}

TEST_F(ScriptsTest, TheScriptSeesNoneOfOurFilesAndSignalsAsAFreshProcessHasThem) {
  // Would be inherited; its number is not one that the script opens itself.
  const posix::FileDescriptor null(open("/dev/null", O_RDONLY | O_CLOEXEC));
  const posix::FileDescriptor inherited(fcntl(null.number(), F_DUPFD, 50));
  ASSERT_GE(inherited.number(), 50);
  signal(SIGPIPE, SIG_IGN);
  sigset_t blocked;
  sigemptyset(&blocked);
  sigaddset(&blocked, SIGTERM);
  sigprocmask(SIG_BLOCK, &blocked, nullptr);
  standIn(
      R"(exec 3>"$OUTPUT"; ls /proc/self/fd | tr '\n' ' ' >&3; grep -E '^Sig(Blk|Ign)' /proc/self/status >&3)");
  EXPECT_TRUE(run().succeeded);
  sigprocmask(SIG_UNBLOCK, &blocked, nullptr);
  std::string files;
  std::string field;
  unsigned long long blockedThere = 0;
  unsigned long long ignoredThere = 0;
  std::istringstream lines(output());
  std::getline(lines, files, 'S');
  lines >> field >> std::hex >> blockedThere >> field >> ignoredThere;
  EXPECT_EQ(files, "0 1 2 3 4 ");  // the script opens 3, and ls opens 4 for the directory
  EXPECT_EQ(blockedThere, 0u);
  EXPECT_EQ(ignoredThere >> (SIGPIPE - 1) & 1, 0u);
}

TEST_F(ScriptsTest, AScriptThatDoesNotEndIsEnded) {
  for (const auto* commands : {"sleep 60", "exec sleep 60", "trap '' TERM; while :; do sleep 60; done"}) {
    standIn(commands);
    const auto start = std::chrono::steady_clock::now();
    const auto outcome = Scripts(tap, std::chrono::seconds(1)).run("beep");
    EXPECT_FALSE(outcome.succeeded);
    EXPECT_EQ(outcome.message, "osascript did not end within 1 s");
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "nothing is left of it";
  }
}

TEST_F(ScriptsTest, ASignalThatEndsTheProgramEndsTheScript) {
  for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
    standIn(R"(echo running > "$OUTPUT"; sleep 60)");
    std::filesystem::remove(scratch.path() / "output");
    // The program's own handler; without it the signal would end the test.
    const auto hear = +[](gpointer) -> gboolean { return G_SOURCE_CONTINUE; };
    const auto source = g_unix_signal_add(number, hear, nullptr);
    std::thread user([&] {
      while (output() != "running\n") std::this_thread::yield();
      kill(getpid(), number);
    });
    const auto start = std::chrono::steady_clock::now();
    const auto outcome = run();
    user.join();
    g_source_remove(source);
    EXPECT_FALSE(outcome.succeeded) << number;
    EXPECT_EQ(outcome.message, "osascript was ended by signal 15");
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20)) << "not after a minute";
  }
}

TEST_F(ScriptsTest, ASignalThatCameBeforeTheScriptBeganEndsItToo) {
  standIn("sleep 60");
  EndingSignals signals;
  signals.beginRun();
  ASSERT_FALSE(signals.came());
  raise(SIGTERM);
  while (!signals.came()) std::this_thread::yield();
  const auto outcome = run();
  EXPECT_FALSE(outcome.succeeded);
  EXPECT_EQ(outcome.message, "osascript was ended by signal 15");
}

TEST_F(ScriptsTest, NoFilesAndNoProcessesAreLeft) {
  standIn("exit 1");
  run();  // once, because GLib then opens the file it waits for signals with
  const auto before = openFiles();
  for (int time = 0; time < 5; ++time) run();
  EXPECT_EQ(openFiles(), before);
  EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
  EXPECT_EQ(errno, ECHILD);
}

}  // namespace
}  // namespace keyvora::x11
