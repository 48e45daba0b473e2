#include "tests/runner/runner_fixture.h"

namespace keyvora::testing {
namespace {

using simulated::TraceEntry;
using simulated::trace::ScriptRun;
using ::testing::ElementsAreArray;

class RunAppleScriptTest : public RunnerTest {
 protected:
  std::vector<TraceEntry> running(const std::string& script) {
    runner.runAppleScript(script, "S  Name");
    return host.trace.take();
  }
};

TEST_F(RunAppleScriptTest, WrapsTheFragmentAsItStands) {
  struct Case {
    std::string fragment;
    std::string source;
  };
  for (const auto& [fragment, source] : {
           Case{"beep", "tell application \"Microsoft Excel\"\nbeep\nend tell"},
           Case{"", "tell application \"Microsoft Excel\"\n\nend tell"},
           Case{"beep\n", "tell application \"Microsoft Excel\"\nbeep\n\nend tell"},
           Case{"a\nb\r\n  c \"\\", "tell application \"Microsoft Excel\"\na\nb\r\n  c \"\\\nend tell"},
           Case{"tell x\ny\nend tell", "tell application \"Microsoft Excel\"\ntell x\ny\nend tell\nend tell"},
       }) {
    EXPECT_THAT(running(fragment),
                ElementsAreArray<TraceEntry>({ScriptRun{source}, logged("S  Name (applescript)")}));
  }
}

TEST_F(RunAppleScriptTest, AFailureIsLoggedWithItsMessageOrWithout) {
  struct Case {
    std::optional<std::string> message;
    std::string line;
  };
  for (const auto& [message, line] : {
           Case{"Expected end of line.", "S  Name FAILED: Expected end of line."},
           Case{"", "S  Name FAILED: "},
           Case{std::nullopt, "S  Name FAILED: unknown error"},
       }) {
    host.scripts.outcome = {false, message};
    EXPECT_EQ(running("x").back(), logged(line));
  }
}

TEST_F(RunAppleScriptTest, AScriptThatCannotBeMadeIsAnUnknownError) {
  host.failures.always(simulated::Call::runScript);
  EXPECT_THAT(running("x"), ElementsAreArray({logged("S  Name FAILED: unknown error")}));
}

TEST_F(RunAppleScriptTest, DoesNotAskWhetherTheTargetRuns) {
  host.applications.quit(process);
  EXPECT_EQ(running("x").back(), logged("S  Name (applescript)"));
  EXPECT_EQ(host.failures.count(simulated::Call::running), 0U);
}

}  // namespace
}  // namespace keyvora::testing
