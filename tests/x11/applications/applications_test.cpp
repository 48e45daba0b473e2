#include "hosts/x11/applications/applications.h"

#include <gtest/gtest.h>

#include "hosts/x11/display.h"
#include "tests/x11/keyboard/client_window.h"
#include "tests/x11/private_display.h"

namespace keyvora::x11 {
namespace {

constexpr std::string_view excel = "com.microsoft.Excel";
using Processes = std::vector<platform::ProcessIdentifier>;

class ApplicationsTest : public testing::Test {
 protected:
  bool comesToFront(bool target) {
    return runUntil([&] { return (applications.frontmostBundleIdentifier() == excel) == target; });
  }
  bool runs(const Processes& processes) {
    return runUntil([&] { return applications.running(excel) == processes; });
  }

  PrivateDisplay display;
  TargetWindow targetWindow;
  Applications applications{display.name(), targetWindow};
};

TEST_F(ApplicationsTest, NothingRunsOnAnEmptyDesktop) {
  EXPECT_TRUE(applications.running(excel).empty());
  EXPECT_EQ(applications.frontmostBundleIdentifier(), std::nullopt);
}

TEST_F(ApplicationsTest, WindowsComeAndGo) {
  {
    const ClientWindow window(display.name(), {});
    ASSERT_TRUE(window.awaitFocus());
    EXPECT_TRUE(comesToFront(true));
    EXPECT_TRUE(runs({4711}));
    EXPECT_TRUE(applications.running("com.microsoft.excel").empty()) << "identifiers are compared exactly";
    EXPECT_TRUE(applications.running("").empty());
  }
  EXPECT_TRUE(runs({}));
  EXPECT_TRUE(comesToFront(false));
}

TEST_F(ApplicationsTest, ProcessesAreListedOnceAndTheOldestFirst) {
  const ClientWindow first(display.name(), {.process = 20});
  ASSERT_TRUE(first.awaitFocus());
  const ClientWindow second(display.name(),
                            {.instanceName = "libreoffice", .className = "libreoffice-calc", .process = 10});
  ASSERT_TRUE(second.awaitFocus());
  const ClientWindow third(display.name(), {.process = 20});
  ASSERT_TRUE(third.awaitFocus());
  EXPECT_TRUE(runs({20, 10}));
}

TEST_F(ApplicationsTest, TheProcessOfTheTargetsWindowIsListedFirst) {
  const ClientWindow first(display.name(), {.process = 10});
  ASSERT_TRUE(first.awaitFocus());
  const ClientWindow second(display.name(), {.process = 20});
  ASSERT_TRUE(second.awaitFocus());
  const ClientWindow third(display.name(), {.process = 30});
  ASSERT_TRUE(third.awaitFocus());
  ASSERT_TRUE(runs({10, 20, 30}));
  targetWindow.set(third.window());
  EXPECT_TRUE(runs({30, 10, 20}));
  targetWindow.set(second.window());
  EXPECT_TRUE(runs({20, 10, 30}));
  targetWindow.set(4711);
  EXPECT_TRUE(runs({10, 20, 30}));
}

TEST_F(ApplicationsTest, TheDocumentIsTheTargetsWindowOrTheOneThatItIsADialogOf) {
  EXPECT_FALSE(applications.hasDocument());
  const ClientWindow first(display.name(), {.process = 10, .title = "first"});
  ASSERT_TRUE(first.awaitFocus());
  const ClientWindow second(display.name(), {.process = 20, .title = "\u00e9 second"});
  ASSERT_TRUE(second.awaitFocus());
  const auto expectFrame = [&](unsigned long window, const DocumentFrame& expected) {
    targetWindow.set(window);
    EXPECT_TRUE(applications.hasDocument());
    const auto frame = applications.documentFrame();
    ASSERT_TRUE(frame);
    EXPECT_EQ(frame->process, expected.process);
    EXPECT_EQ(frame->title, expected.title);
    EXPECT_EQ(frame->isActive, expected.isActive);
  };
  ASSERT_TRUE(runs({10, 20}));
  expectFrame(first.window(), {10, "first", false});
  expectFrame(second.window(), {20, "\u00e9 second", true});

  const ClientWindow::Options dialogOfFirst{.process = 10, .transientFor = first.window(), .title = "dialog"};
  ClientWindow dialog(display.name(), dialogOfFirst);
  ASSERT_TRUE(dialog.activate());
  ASSERT_TRUE(comesToFront(true));
  expectFrame(dialog.window(), {10, "first", false});
  targetWindow.set(4711);
  EXPECT_FALSE(applications.documentFrame());
}

TEST_F(ApplicationsTest, AnotherApplicationInFrontIsNotTheTarget) {
  const ClientWindow target(display.name(), {});
  ASSERT_TRUE(target.awaitFocus());
  ASSERT_TRUE(comesToFront(true));
  const ClientWindow other(display.name(), {.instanceName = "xterm", .className = "XTerm", .process = 1});
  ASSERT_TRUE(other.awaitFocus());
  EXPECT_TRUE(comesToFront(false));
  EXPECT_TRUE(runs({4711}));
}

TEST_F(ApplicationsTest, ADialogCountsWithTheWindowThatItWasOpenedFrom) {
  const ClientWindow calc(display.name(), {.instanceName = "libreoffice", .className = "libreoffice-calc"});
  ASSERT_TRUE(calc.awaitFocus());
  const ClientWindow writer(display.name(),
                            {.instanceName = "libreoffice", .className = "libreoffice-writer"});
  ASSERT_TRUE(writer.awaitFocus());
  ASSERT_TRUE(comesToFront(false));

  const auto dialogOf = [&](unsigned long owner, platform::ProcessIdentifier process) {
    return ClientWindow::Options{
        .instanceName = "soffice", .className = "Soffice", .process = process, .transientFor = owner};
  };
  ClientWindow dialog(display.name(), dialogOf(calc.window(), 4711));
  ASSERT_TRUE(dialog.activate());
  EXPECT_TRUE(comesToFront(true));
  ClientWindow ofTheDialog(display.name(), dialogOf(dialog.window(), 4711));
  ASSERT_TRUE(ofTheDialog.activate());
  EXPECT_TRUE(comesToFront(true));
  ClientWindow ofWriter(display.name(), dialogOf(writer.window(), 4711));
  ASSERT_TRUE(ofWriter.activate());
  EXPECT_TRUE(comesToFront(false));
  ClientWindow ofAnotherProcess(display.name(), dialogOf(calc.window(), 4712));
  ASSERT_TRUE(ofAnotherProcess.activate());
  EXPECT_TRUE(comesToFront(false));
}

TEST_F(ApplicationsTest, AWindowMayChangeWhatItIs) {
  ClientWindow window(display.name(),
                      {.instanceName = "libreoffice", .className = "libreoffice-startcenter"});
  ASSERT_TRUE(window.awaitFocus());
  ASSERT_TRUE(comesToFront(false));
  window.setClass("libreoffice", "libreoffice-calc");
  EXPECT_TRUE(comesToFront(true));
}

TEST_F(ApplicationsTest, AWindowThatShowsBeforeItSaysWhatItIsIsFoundOut) {
  ClientWindow window(display.name(), {.instanceName = "", .className = ""});
  ASSERT_TRUE(window.awaitFocus());
  ASSERT_TRUE(comesToFront(false));
  window.setClass("gnumeric", "Gnumeric");
  EXPECT_TRUE(comesToFront(true));
}

TEST_F(ApplicationsTest, AWindowThatBecameAnotherInTheBackgroundIsFoundOutWhenItComesToFront) {
  ClientWindow window(display.name(), {.instanceName = "xterm", .className = "XTerm"});
  ASSERT_TRUE(window.awaitFocus());
  const ClientWindow other(display.name(), {.instanceName = "xterm", .className = "XTerm", .process = 1});
  ASSERT_TRUE(other.awaitFocus());
  window.setClass("gnumeric", "Gnumeric");
  ASSERT_TRUE(window.activate());
  EXPECT_TRUE(comesToFront(true));
}

/// Sends events to the clients that selected them on a window, as any program may.
class Forger {
 public:
  explicit Forger(const std::string& displayName) : connection_(Connection::open(displayName)) {}

  void claimDestroyed(Window window) {
    XEvent event{};
    event.type = DestroyNotify;
    event.xdestroywindow.event = window;
    event.xdestroywindow.window = window;
    send(window, event);
  }

  void claimChanged(Window window, const char* property) {
    XEvent event{};
    event.type = PropertyNotify;
    event.xproperty.window = window;
    event.xproperty.atom = connection_->atom(property);
    event.xproperty.state = PropertyNewValue;
    send(window, event);
  }

 private:
  /// To every client that selected the window's destruction.
  void send(Window window, XEvent& event) {
    XSendEvent(connection_->get(), window, False, StructureNotifyMask, &event);
    XSync(connection_->get(), False);
  }

  std::unique_ptr<Connection> connection_;
};

TEST_F(ApplicationsTest, WhatAnotherProgramClaimsOfAWindowChangesNothing) {
  const ClientWindow target(display.name(), {.process = 10});
  ASSERT_TRUE(target.awaitFocus());
  ASSERT_TRUE(runs({10}));
  ASSERT_TRUE(comesToFront(true));
  ClientWindow other(display.name(), {.instanceName = "xterm", .className = "XTerm", .process = 20});
  ASSERT_TRUE(other.awaitFocus());
  ASSERT_TRUE(comesToFront(false));
  auto last = std::make_unique<ClientWindow>(display.name(), ClientWindow::Options{.process = 40});
  ASSERT_TRUE(last->awaitFocus());
  const ClientWindow front(display.name(), {.process = 30});
  ASSERT_TRUE(front.awaitFocus());
  ASSERT_TRUE(runs({10, 40, 30}));
  ASSERT_TRUE(comesToFront(true));

  display.endWindowManager();  // the forged event deceives it
  Forger forger(display.name());
  forger.claimDestroyed(target.window());
  forger.claimDestroyed(front.window());
  other.setClass("gnumeric", "Gnumeric");  // unknown until it becomes the active one
  forger.claimChanged(other.window(), "WM_CLASS");
  // Once the end of the last window has been read, so have all events sent before it.
  last.reset();
  EXPECT_TRUE(runs({10, 30}));
  EXPECT_TRUE(comesToFront(true));
}

TEST_F(ApplicationsTest, ARestartOfTheWindowManagerLosesNothing) {
  ClientWindow target(display.name(), {});
  ASSERT_TRUE(target.awaitFocus());
  display.endWindowManager();
  EXPECT_TRUE(runs({4711}));
  display.startWindowManager();
  ASSERT_TRUE(target.activate());
  EXPECT_TRUE(comesToFront(true));
  EXPECT_TRUE(runs({4711}));
}

TEST(Applications, WithoutADisplayNothingRuns) {
  TargetWindow targetWindow;
  Applications applications(":4711", targetWindow);
  EXPECT_TRUE(applications.running(excel).empty());
  EXPECT_EQ(applications.frontmostBundleIdentifier(), std::nullopt);
}

}  // namespace
}  // namespace keyvora::x11
