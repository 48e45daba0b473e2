#include <gtest/gtest.h>  // before Xlib, whose macros conflict with it

#include "hosts/x11/display.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

#include "hosts/x11/keyboard/current_tap.h"
#include "hosts/x11/keyboard/keyboard.h"
#include "tests/x11/private_display.h"

namespace keyvora::x11 {
namespace {

constexpr Window noSuchWindow = 0x1234567;

TEST(Display, ErrorsAreTrappedAndNeverFatal) {
  const PrivateDisplay display;
  const auto connection = Connection::open(display.name());
  ASSERT_NE(connection, nullptr);
  ErrorTrap outer(connection->get());
  XMapWindow(connection->get(), noSuchWindow);
  {
    ErrorTrap inner(connection->get());
    EXPECT_EQ(inner.code(), 0) << "the error before belongs to the outer trap";
    XDestroyWindow(connection->get(), noSuchWindow);
    EXPECT_EQ(inner.code(), BadWindow);
  }
  EXPECT_EQ(outer.code(), BadWindow);
}

TEST(Display, AnErrorOutsideATrapIsPassedOver) {
  const PrivateDisplay display;
  const auto connection = Connection::open(display.name());
  XMapWindow(connection->get(), noSuchWindow);
  XSync(connection->get(), False);
  ErrorTrap trap(connection->get());
  EXPECT_EQ(trap.code(), 0);
}

TEST(Display, SaysWhetherATapCanWork) {
  const PrivateDisplay display;
  EXPECT_EQ(displayProblem(display.name()), std::nullopt);
  EXPECT_EQ(displayProblem(":4711"), "The X display :4711 cannot be opened.");
  EXPECT_EQ(Connection::open(":4711"), nullptr);
}

TEST(Display, SaysThatThereIsNone) {
  ASSERT_EQ(unsetenv("DISPLAY"), 0);
  EXPECT_EQ(displayProblem(""), "There is no X display: DISPLAY is not set.");
}

TEST(Display, ItsLossEndsTheProcessOnce) {
  PrivateDisplay display;
  const auto errors = std::filesystem::temp_directory_path() / ("keyvora-loss-" + std::to_string(getpid()));
  Child program({"sh", "-c", "ulimit -c 0; exec \"$0\" \"$1\" 2>\"$2\"", KEYVORA_TAP_PROCESS, display.name(),
                 errors.string()},
                {});
  CurrentTap tap;
  TargetWindow targetWindow;
  // Has no connection to lose.
  Keyboard keyboard(display.name(), KEYVORA_TAP_PROGRAM, tap, targetWindow);
  ASSERT_TRUE(runUntil([&] {
    return keyboard.createTap(0, [](const platform::KeyEvent&) { return platform::Verdict::pass; }) ==
           nullptr;
  }));
  display.endServer();
  const int status = program.wait();
  EXPECT_TRUE(WIFEXITED(status)) << status;
  EXPECT_EQ(WEXITSTATUS(status), 1);
  std::ostringstream said;
  said << std::ifstream(errors).rdbuf();
  std::filesystem::remove(errors);
  EXPECT_EQ(said.str(), "keyvora: The X display is gone, and keyvora ends with it.\nrecords are safe\n");
}

}  // namespace
}  // namespace keyvora::x11
