#include "hosts/x11/accessibility/accessibility.h"
#include "hosts/x11/keyboard/current_tap.h"

#include <X11/keysym.h>
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>

#include "tests/x11/conversation.h"
#include "tests/x11/private_session.h"
#include "tests/x11/recording_console.h"
#include "tests/x11/screen.h"

namespace keyvora::x11 {
namespace {

using platform::ElementRef;

class AccessibilityTest : public testing::Test {
 protected:
  Conversation& target(const std::vector<std::string>& arguments = {}) {
    std::vector<std::string> command{MENU_PROGRAM};
    command.insert(command.end(), arguments.begin(), arguments.end());
    program = std::make_unique<Conversation>(command);
    application = accessibility.application(program->pid());
    return *program;
  }

  /// Reads "AXMenuBar" until it exists: an application registers on the bus some time after its start.
  ElementRef awaitMenuBar() {
    ElementRef bar;
    runUntil([&] {
      application = accessibility.application(program->pid());
      const auto answer = application->attribute("AXMenuBar");
      if (const auto* element = std::get_if<ElementRef>(&answer.value)) bar = *element;
      return bar != nullptr;
    });
    EXPECT_TRUE(bar);
    return bar;
  }

  static std::vector<ElementRef> children(const ElementRef& element) {
    const auto answer = element->attribute("AXChildren");
    EXPECT_EQ(answer.error, 0);
    const auto* list = std::get_if<std::vector<ElementRef>>(&answer.value);
    return list != nullptr ? *list : std::vector<ElementRef>{};
  }

  /// A title, or "-" without one.
  static std::string title(const ElementRef& element) {
    const auto answer = element->attribute("AXTitle");
    const auto* text = std::get_if<std::string>(&answer.value);
    return text != nullptr ? *text : "-";
  }

  static std::vector<std::string> titles(const ElementRef& element) {
    std::vector<std::string> found;
    for (const auto& child : children(element)) found.push_back(title(child));
    return found;
  }

  static ElementRef child(const ElementRef& element, const std::string& name) {
    for (const auto& each : children(element)) {
      if (title(each) == name) return each;
    }
    ADD_FAILURE() << name << " is missing";
    return element;
  }

  PrivateSession& session = PrivateSession::shared();
  RecordingConsole console;
  Notices notices{console};
  CurrentTap tap;
  TargetWindow targetWindow;
  Applications applications{"", targetWindow};
  Accessibility accessibility{notices, applications, tap};
  std::unique_ptr<Conversation> program;
  ElementRef application;
};

TEST_F(AccessibilityTest, TheFirstMenuBarInDepthFirstOrderIsTheOne) {
  target();
  EXPECT_EQ(titles(awaitMenuBar()), (std::vector<std::string>{"File", "Format"}));
}

TEST_F(AccessibilityTest, MenusAreReadWithUntitledSeparatorsInPlace) {
  target();
  const auto file = child(awaitMenuBar(), "File");
  EXPECT_EQ(titles(file), (std::vector<std::string>{"Save", "-", "Save As…", "Revert", "Recent"}));
  EXPECT_EQ(titles(child(file, "Recent")), std::vector<std::string>{"book.xlsx"});
  EXPECT_EQ(titles(child(file, "Save")), std::vector<std::string>{});
  EXPECT_EQ(title(children(file)[1]), "-");
  EXPECT_EQ(children(file)[1]->attribute("AXTitle").error, 0);
}

TEST_F(AccessibilityTest, PressingAnItemChoosesItWithoutOpeningItsMenu) {
  auto& pressed = target();
  const auto bar = awaitMenuBar();
  EXPECT_EQ(child(child(bar, "File"), "Save")->perform("AXPress"), 0);
  EXPECT_TRUE(pressed.hears("pressed Save"));
  EXPECT_EQ(child(child(child(bar, "File"), "Recent"), "book.xlsx")->perform("AXPress"), 0);
  EXPECT_TRUE(pressed.hears("pressed book.xlsx"));
  EXPECT_EQ(child(child(bar, "Format"), "Cells...")->perform("AXPress"), 0);
  EXPECT_TRUE(pressed.hears("pressed Cells..."));
}

/// A program that reads the keys later than they are typed.
class TypedAheadTest : public AccessibilityTest {
 protected:
  /// Shows the program, with the keyboard on its entry.
  void show() {
    auto& shown = target();
    awaitMenuBar();
    ASSERT_TRUE(screen.awaitWindow("menu program"));
    ASSERT_TRUE(runUntil([&] {
      screen.press(XK_a);
      shown.say("entry");
      text = shown.answer();
      return !text.empty();
    }));
    constexpr std::string_view window = "window ";
    for (const auto& line : shown.heard()) {
      if (line.starts_with(window)) targetWindow.set(std::stoul(line.substr(window.size())));
    }
  }

  /// Types while the program does not read, then presses Save at once.
  void typeAheadAndPress() {
    kill(program->pid(), SIGSTOP);
    constexpr int many = 50;
    for (int key = 0; key < many; ++key) screen.press(XK_b);
    text.append(many, 'b');
    kill(program->pid(), SIGCONT);
    EXPECT_EQ(child(child(awaitMenuBar(), "File"), "Save")->perform("AXPress"), 0);
    ASSERT_TRUE(program->hears("pressed Save"));
  }

  /// What the program had noted when the item was pressed.
  [[nodiscard]] std::string noted() const {
    const auto& lines = program->heard();
    return lines.size() < 2 ? "" : lines[lines.size() - 2];
  }

  Screen screen;
  std::string text;
};

TEST_F(TypedAheadTest, AnItemIsPressedAfterTheKeysBeforeItHaveHadTheirEffect) {
  show();
  typeAheadAndPress();
  EXPECT_EQ(noted(), "noted " + text);
}

TEST_F(TypedAheadTest, AWindowThatAnswersNoPingIsNotWaitedFor) {
  show();
  const auto connection = Connection::open("");
  XDeleteProperty(connection->get(), targetWindow.get(), connection->atom("WM_PROTOCOLS"));
  XSync(connection->get(), False);
  typeAheadAndPress();
}

TEST_F(AccessibilityTest, AnItemWithASubmenuInsideAMenuIsNotPressedAndTheKeyboardStaysWhereItWas) {
  auto& untouched = target();
  const auto recent = child(child(awaitMenuBar(), "File"), "Recent");
  EXPECT_NE(recent->perform("AXPress"), 0);
  Screen screen;
  ASSERT_TRUE(screen.awaitWindow("menu program"));
  ASSERT_TRUE(runUntil([&] {
    screen.press(XK_a);
    untouched.say("entry");
    return !untouched.answer().empty();
  })) << "what is typed still arrives";
}

TEST_F(AccessibilityTest, ADisabledItemCannotBePressed) {
  auto& untouched = target();
  const auto file = child(awaitMenuBar(), "File");
  child(file, "Revert")->perform("AXPress");
  untouched.say("");
  EXPECT_EQ(untouched.answer(), "");
}

TEST_F(AccessibilityTest, AnItemThatIsGreyUntilItsMenuOpensIsPressedWithoutShowingTheMenu) {
  auto& pressed = target({"stale"});
  const auto special = child(child(awaitMenuBar(), "Edit"), "Paste Special");
  Screen screen;
  ASSERT_TRUE(screen.awaitWindow("menu program"));
  EXPECT_EQ(child(special, "Values")->perform("AXPress"), 0);
  for (const auto* line :
       {"opened edit", "opened special", "closed special", "closed edit", "pressed Values"}) {
    EXPECT_TRUE(pressed.hears(line)) << line;
  }
}

TEST_F(AccessibilityTest, WhatIsNotKnownIsAnError) {
  target();
  const auto bar = awaitMenuBar();
  EXPECT_NE(bar->attribute("AXRole").error, 0);
  EXPECT_NE(bar->perform("AXShowMenu"), 0);
  EXPECT_NE(bar->perform("AXPress"), 0) << "there is nothing to press about a bar";
  EXPECT_NE(application->attribute("AXChildren").error, 0);
  EXPECT_NE(application->perform("AXPress"), 0);
}

TEST_F(AccessibilityTest, TitlesAreReadAnewEachTime) {
  auto& renamed = target();
  EXPECT_EQ(titles(child(awaitMenuBar(), "File")).front(), "Save");
  renamed.say("rename");
  ASSERT_TRUE(renamed.hears("ready"));
  EXPECT_EQ(titles(child(awaitMenuBar(), "File")).front(), "Store");
}

TEST_F(AccessibilityTest, WithoutAMenuBarThereIsAnError) {
  target({"no-bar"});
  for (int time = 0; time < 3; ++time) EXPECT_NE(application->attribute("AXMenuBar").error, 0);
}

/// Documents of one process, each with its own menu bar.
class DocumentMenuTest : public AccessibilityTest {
 protected:
  /// Shows the documents, in this order.
  void show(const std::vector<std::string>& titles) {
    std::vector<std::string> arguments{"documents"};
    arguments.insert(arguments.end(), titles.begin(), titles.end());
    const auto& shown = target(arguments);
    constexpr std::string_view window = "window ";
    for (const auto& line : shown.heard()) {
      if (line.starts_with(window)) windows.push_back(std::stoul(line.substr(window.size())));
    }
    ASSERT_EQ(windows.size(), titles.size());
  }

  /// The only item of the File menu; "" without a menu bar.
  std::string save() {
    const auto answer = accessibility.application(program->pid())->attribute("AXMenuBar");
    const auto* bar = std::get_if<ElementRef>(&answer.value);
    return bar == nullptr ? "" : titles(child(*bar, "File")).front();
  }
  bool comesToHave(const std::string& item) {
    return runUntil([&] { return save() == item; });
  }

  std::vector<unsigned long> windows;
};

TEST_F(DocumentMenuTest, TheMenuBarIsThatOfTheTargetsWindowBeItInFrontOrNot) {
  show({"one", "two"});
  for (const std::size_t which : {0U, 1U, 0U}) {
    targetWindow.set(windows.at(which));
    EXPECT_TRUE(comesToHave("Save " + std::to_string(which + 1)));
  }
}

TEST_F(DocumentMenuTest, OfDocumentsWithOneTitleTheActiveOneIsFoundAndNoOther) {
  show({"same", "same"});
  for (const std::size_t which : {1U, 0U, 1U}) {
    program->say("present " + std::to_string(which + 1));
    ASSERT_TRUE(program->hears("ready"));
    targetWindow.set(windows.at(which));
    EXPECT_TRUE(comesToHave("Save " + std::to_string(which + 1)));
    targetWindow.set(windows.at(1 - which));
    EXPECT_EQ(save(), "");
  }
}

TEST_F(DocumentMenuTest, AWindowThatIsGoneOrAnotherProcesssHasNoMenuBar) {
  show({"one"});
  targetWindow.set(windows.front());
  ASSERT_TRUE(comesToHave("Save 1"));
  EXPECT_NE(accessibility.application(1)->attribute("AXMenuBar").error, 0);
  targetWindow.set(4711);
  EXPECT_EQ(save(), "");
}

TEST_F(AccessibilityTest, AProcessThatIsNotOnTheBusHasNoMenuBar) {
  EXPECT_NE(accessibility.application(1)->attribute("AXMenuBar").error, 0);
  EXPECT_NE(accessibility.application(-1)->attribute("AXMenuBar").error, 0);
}

TEST_F(AccessibilityTest, ATargetThatDiesInTheMiddleOfAWalkIsAnErrorAndNoMore) {
  auto& dying = target();
  const auto bar = awaitMenuBar();
  const auto file = child(bar, "File");
  const auto save = child(file, "Save");
  kill(dying.pid(), SIGKILL);
  ASSERT_TRUE(runUntil([&] { return file->attribute("AXChildren").error != 0; }));
  EXPECT_NE(bar->attribute("AXChildren").error, 0);
  EXPECT_EQ(title(save), "-");
  EXPECT_NE(save->perform("AXPress"), 0);
  EXPECT_NE(application->attribute("AXMenuBar").error, 0);
}

TEST_F(AccessibilityTest, ATargetThatHangsCostsOneTimeLimitAndNoMore) {
  auto& hung = target();
  const auto bar = awaitMenuBar();
  const auto items = children(child(bar, "File"));
  ASSERT_GE(items.size(), 4U);
  hung.say("hang");
  ASSERT_TRUE(hung.hears("ready"));
  const auto now = [] { return std::chrono::steady_clock::now(); };
  const auto start = now();
  for (const auto& item : items) {
    EXPECT_EQ(title(item), "-");
    EXPECT_NE(item->perform("AXPress"), 0);
  }
  EXPECT_NE(bar->attribute("AXChildren").error, 0);
  EXPECT_LT(now() - start, std::chrono::seconds(6)) << "each of nine calls could wait for 0.8 s";
  kill(hung.pid(), SIGKILL);
}

TEST_F(AccessibilityTest, TrustIsADisplayThatTheTapCanWorkOn) {
  EXPECT_TRUE(accessibility.isTrusted());
  EXPECT_TRUE(accessibility.isTrustedPrompting());
  EXPECT_EQ(console.records, std::vector<std::string>{});

  const Variable none("DISPLAY", std::nullopt);
  EXPECT_FALSE(accessibility.isTrusted());
  EXPECT_EQ(console.records, std::vector<std::string>{}) << "only who prompts says something";
  for (int time = 0; time < 2; ++time) EXPECT_FALSE(accessibility.isTrustedPrompting());
  EXPECT_EQ(console.records,
            std::vector<std::string>{
                "keyvora: There is no X display: DISPLAY is not set. Key sequences do not work, "
                "the menu and updates do."});
}

TEST(AccessibilityTrust, IsAskedOfTheServerUntilItIsThereAndNotAgain) {
  RecordingConsole console;
  Notices notices(console);
  CurrentTap tap;
  TargetWindow targetWindow;
  Applications applications("", targetWindow);
  Accessibility accessibility(notices, applications, tap);
  PrivateDisplay display;
  const Variable late("DISPLAY", ":4711");
  EXPECT_FALSE(accessibility.isTrusted());
  const Variable there("DISPLAY", display.name());
  EXPECT_TRUE(accessibility.isTrusted());
  display.endServer();
  EXPECT_TRUE(accessibility.isTrusted()) << "it connects no more";
}

}  // namespace
}  // namespace keyvora::x11
