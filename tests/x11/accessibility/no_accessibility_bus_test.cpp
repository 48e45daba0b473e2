#include <gtest/gtest.h>
#include <unistd.h>

#include "hosts/x11/accessibility/accessibility.h"
#include "hosts/x11/keyboard/current_tap.h"
#include "tests/x11/private_session.h"
#include "tests/x11/recording_console.h"

namespace keyvora::x11 {
namespace {

TEST(NoAccessibilityBus, ThereIsNoMenuBarAndThatIsSaidOnce) {
  PrivateSession session;
  session.endBuses();
  RecordingConsole console;
  Notices notices(console);
  CurrentTap tap;
  TargetWindow targetWindow;
  Applications applications("", targetWindow);
  Accessibility accessibility(notices, applications, tap);
  for (int time = 0; time < 2; ++time) {
    EXPECT_NE(accessibility.application(getpid())->attribute("AXMenuBar").error, 0);
    EXPECT_TRUE(accessibility.isTrustedPrompting()) << "key sequences work all the same";
  }
  EXPECT_EQ(console.records,
            std::vector<std::string>{
                "keyvora: There is no accessibility bus: menu actions do not work, all others do."});
}

}  // namespace
}  // namespace keyvora::x11
