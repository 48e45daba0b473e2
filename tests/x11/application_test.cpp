#include "hosts/x11/application.h"

#include <gtest/gtest.h>

#include <csignal>

#include "hosts/x11/loop/main_loop.h"
#include "tests/x11/recording_console.h"

namespace keyvora::x11 {
namespace {

/// Without a display, which an application needs only if it has no other work.
class ApplicationTest : public testing::Test {
 protected:
  ApplicationTest() {
    process.atExit([this] { happened.emplace_back("exit block"); });
  }

  RecordingConsole console;
  Notices notices{console};
  MainLoop loop;
  Process process;
  bool hasWork = true;
  Application application{process, notices, [this] { return hasWork; }};
  std::vector<std::string> happened;
};

using Happened = std::vector<std::string>;

TEST_F(ApplicationTest, RunsFromLaunchToTermination) {
  application.setDelegate([this] {
    happened.emplace_back("launched");
    loop.after(platform::Seconds(0.01), [this] { application.terminate(); });
  });
  EXPECT_EQ(application.run(), 0);
  EXPECT_EQ(happened, (Happened{"launched", "exit block"}));
}

TEST_F(ApplicationTest, SignalsEndItNormally) {
  for (const int signal : {SIGTERM, SIGINT}) {
    happened.clear();
    process.atExit([this] { happened.emplace_back("exit block"); });
    Application again(process, notices, [] { return true; });
    again.setDelegate([signal] { raise(signal); });
    EXPECT_EQ(again.run(), 0);
    EXPECT_FALSE(happened.empty());
  }
}

TEST_F(ApplicationTest, TerminationBeforeTheStartIsRemembered) {
  application.terminate();
  EXPECT_EQ(application.run(), 0);
}

TEST_F(ApplicationTest, WithoutADisplayAndWithoutWorkItEndsAtOnce) {
  unsetenv("DISPLAY");
  hasWork = false;
  application.setDelegate([this] { happened.emplace_back("launched"); });
  EXPECT_EQ(application.run(), 1);
  EXPECT_EQ(happened, Happened{"exit block"});
  EXPECT_EQ(console.records,
            Happened{"keyvora: There is no X display: DISPLAY is not set. keyvora needs one to see "
                     "the keyboard, and ends."});
}

TEST(ProcessDeathTest, ExitRunsTheBlocksTheLastAddedFirstAndOnlyOnce) {
  const auto leave = [] {
    Process process;
    process.atExit([] { fputs("first added\n", stderr); });
    process.atExit([] { fputs("last added\n", stderr); });
    process.runExitBlocks();
    process.exit(3);
  };
  EXPECT_EXIT(leave(), testing::ExitedWithCode(3), "^last added\nfirst added\n$");
}

TEST(Process, PrintsALineAtOnce) {
  testing::internal::CaptureStdout();
  Process().print("update 1.3 (57)");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "update 1.3 (57)\n");
}

}  // namespace
}  // namespace keyvora::x11
