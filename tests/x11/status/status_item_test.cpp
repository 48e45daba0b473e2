#include <X11/keysym.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>

#include "hosts/x11/keyboard/current_tap.h"
#include "tests/x11/conversation.h"
#include "tests/x11/private_session.h"
#include "tests/x11/reader.h"
#include "tests/x11/screen.h"

namespace keyvora::x11 {
namespace {

using Rows = std::vector<std::string>;

const Rows firstMenu{
    "item: 12 sequences, ready (disabled)", "separator", "item: Edit mappings.json", "item: Reload_mappings",
    "check: Launch at Login (checked)",     "separator", "item: Quit keyvora",
};

class StatusItemTest : public testing::Test {
 protected:
  void TearDown() override {
    const int status = conversation_ ? conversation_->end() : 0;
    EXPECT_EQ(status, 0) << conversation_->errors();
    session.endTray();
    session.display().setLayout("us");
  }

  /// The program with the item.
  Conversation& program() {
    if (!conversation_) {
      conversation_ = std::make_unique<Conversation>(std::vector<std::string>{STATUS_ITEM_PROGRAM});
      reader_ = std::make_unique<Reader>(conversation_->pid());
    }
    return *conversation_;
  }

  void tell(const std::string& line) {
    program().say(line);
    ASSERT_TRUE(program().hears("ready"));
  }

  int draws() {
    program().say("draws");
    return std::stoi(program().answer());
  }

  /// The area of the item with this title, once the tray has placed it.
  std::optional<Screen::Area> awaitItem(const std::string& title) {
    std::optional<Screen::Area> area = screen.awaitWindow(title);
    runUntil([&] {
      const auto before = std::exchange(area, screen.settledWindow(title));
      return area && before == area;
    });
    return area;
  }

  /// A tray that contains the item.
  Screen::Area showItem(const std::vector<std::string>& trayOptions = {}) {
    session.startTray(trayOptions);
    tell("title ⌥");
    tell("menu first");
    const auto area = awaitItem("⌥");
    EXPECT_TRUE(area);
    return area.value_or(Screen::Area{});
  }

  /// Opens the menu and waits until it is visible.
  Accessible openMenu(const Screen::Area& item, unsigned button = 1) {
    screen.click(item, button);
    return awaitMenu();
  }

  Accessible awaitMenu() {
    Accessible menu;
    runUntil(
        [&] { return (menu = reader_->find(ATSPI_ROLE_MENU)) && Reader::has(menu, ATSPI_STATE_SHOWING); });
    return menu;
  }

  bool awaitClosed() {
    return runUntil([this] {
      const auto menu = reader_->find(ATSPI_ROLE_MENU);
      return !menu || !Reader::has(menu, ATSPI_STATE_SHOWING);
    });
  }

  Screen::Area rowArea(const std::string& name, AtspiRole role = ATSPI_ROLE_MENU_ITEM) {
    const auto row = reader_->await(role, name);
    const auto area = row ? Reader::area(row) : std::nullopt;
    EXPECT_TRUE(area) << name;
    if (!area) return {};
    return {area->x, area->y, area->width, area->height};
  }

  bool saidNothingAfter(std::size_t lines) {
    program().say("");
    EXPECT_TRUE(program().hears("ready"));
    return program().heard().size() == lines + 1;
  }

  PrivateSession& session = PrivateSession::shared();
  Screen screen;
  std::unique_ptr<Conversation> conversation_;
  std::unique_ptr<Reader> reader_;
};

TEST_F(StatusItemTest, TheTitleShowsInTheTrayAsWideAsItIs) {
  const auto idle = showItem();
  tell("title ⌥ HF");
  const auto armed = screen.awaitWindow("⌥ HF");
  ASSERT_TRUE(armed);
  EXPECT_TRUE(runUntil([&] { return screen.window("⌥ HF").value_or(idle).width > idle.width; }));
  tell("title ⌥");
  EXPECT_TRUE(runUntil([&] { return screen.window("⌥").value_or(*armed).width == idle.width; }))
      << idle.width << " pixels at first, " << armed->width << " with letters, now "
      << screen.window("⌥").value_or(Screen::Area{}).width;
  EXPECT_EQ(screen.managedWindows(), 1u) << "the tray's: the item has no window and no task-bar entry";
}

TEST_F(StatusItemTest, TheSameTitleAgainCostsNoDrawing) {
  showItem();
  const auto shown = draws();
  tell("title ⌥ H");
  ASSERT_TRUE(runUntil([&] { return draws() > shown; }));
  // The tray may still be making room for the new title.
  int settled = 0;
  EXPECT_TRUE(runUntil([&] {
    settled = draws();
    for (int time = 0; time < 20; ++time) tell("title ⌥ H");
    tell("drawn");
    return draws() == settled;
  }));
  tell("title ⌥ HF");
  EXPECT_TRUE(runUntil([&] { return draws() > settled; }));
}

TEST_F(StatusItemTest, TheMenuIsReadRowByRow) {
  const auto menu = openMenu(showItem());
  ASSERT_TRUE(menu);
  EXPECT_EQ(reader_->rows(menu), firstMenu);
}

TEST_F(StatusItemTest, EitherMouseButtonOpensTheMenuAndAClickChooses) {
  const auto item = showItem();
  for (const unsigned button : {1u, 3u}) {
    ASSERT_TRUE(openMenu(item, button)) << button;
    screen.click(rowArea("Edit mappings.json"));
    EXPECT_TRUE(program().hears("chose Edit mappings.json")) << button;
    EXPECT_TRUE(awaitClosed());
  }
  ASSERT_TRUE(openMenu(item));
  screen.click(rowArea("Launch at Login", ATSPI_ROLE_CHECK_MENU_ITEM));
  EXPECT_TRUE(program().hears("chose Launch at Login"));
}

TEST_F(StatusItemTest, ADisabledRowCannotBeChosen) {
  ASSERT_TRUE(openMenu(showItem()));
  const auto before = program().heard().size();
  screen.click(rowArea("12 sequences, ready"));
  EXPECT_TRUE(saidNothingAfter(before));
}

TEST_F(StatusItemTest, KeyLettersChooseWithControlAndByThemselves) {
  const auto item = showItem();
  const struct {
    KeySym key;
    KeySym modifier;
    const char* chosen;
  } cases[] = {
      {XK_e, XK_Control_L, "chose Edit mappings.json"},
      {XK_r, NoSymbol, "chose Reload_mappings"},
      {XK_q, XK_Control_R, "chose Quit keyvora"},
  };
  for (const auto& [key, modifier, chosen] : cases) {
    ASSERT_TRUE(openMenu(item)) << chosen;
    screen.press(key, modifier);
    EXPECT_TRUE(program().hears(chosen));
    EXPECT_TRUE(awaitClosed());
  }
}

TEST_F(StatusItemTest, KeyLettersWorkWithCapsLockOnAndOnLayoutsOfOtherScripts) {
  const auto item = showItem();
  screen.press(XK_Caps_Lock);
  ASSERT_TRUE(openMenu(item));
  screen.press(XK_e, XK_Control_L);
  EXPECT_TRUE(program().hears("chose Edit mappings.json"));
  EXPECT_TRUE(awaitClosed());
  screen.press(XK_Caps_Lock);

  session.display().setLayout("ru,us");
  ASSERT_TRUE(openMenu(item));
  screen.press(XK_Cyrillic_u, XK_Control_L);  // on the key labelled E
  EXPECT_TRUE(program().hears("chose Edit mappings.json"));
}

TEST_F(StatusItemTest, OtherModifiersAndOtherLettersChooseNothing) {
  ASSERT_TRUE(openMenu(showItem()));
  const auto before = program().heard().size();
  screen.press(XK_e, XK_Alt_L);
  screen.press(XK_e, XK_Super_L);
  screen.press(XK_x, XK_Control_L);
  EXPECT_TRUE(saidNothingAfter(before));
}

TEST_F(StatusItemTest, EscapeAndAClickElsewhereCloseTheMenu) {
  const auto item = showItem();
  const auto before = program().heard().size();
  ASSERT_TRUE(openMenu(item));
  screen.press(XK_Escape);
  EXPECT_TRUE(awaitClosed());
  ASSERT_TRUE(openMenu(item));
  screen.click({10, 10, 2, 2});
  EXPECT_TRUE(awaitClosed());
  EXPECT_TRUE(saidNothingAfter(before));
  EXPECT_TRUE(openMenu(item)) << "and it opens again";
}

TEST_F(StatusItemTest, AnAssistiveToolClicksTheItemAndChooses) {
  showItem();
  tell("click");  // trayer does not expose the item's button on the accessibility bus, as other trays do
  ASSERT_TRUE(awaitMenu());
  AccessibilityCalls calls;
  EXPECT_TRUE(calls.press(reader_->await(ATSPI_ROLE_MENU_ITEM, "Edit mappings.json"), CurrentTap().letGo()));
  EXPECT_TRUE(program().hears("chose Edit mappings.json"));
}

TEST_F(StatusItemTest, AnOpenMenuStaysAsItIsWhenItIsReplaced) {
  const auto item = showItem();
  auto menu = openMenu(item);
  ASSERT_TRUE(menu);
  tell("menu second");
  EXPECT_EQ(reader_->rows(menu), firstMenu);
  screen.press(XK_r, XK_Control_L);
  EXPECT_TRUE(program().hears("chose Reload_mappings"));
  ASSERT_TRUE(awaitClosed());
  menu = openMenu(item);
  ASSERT_TRUE(menu);
  EXPECT_EQ(reader_->rows(menu), (Rows{"item: 13 sequences, ready (disabled)", "item: Edit mappings.json"}));
}

TEST_F(StatusItemTest, ALongLineWrapsAndBadTextIsMadeReadable) {
  const auto item = showItem();
  tell("menu long");
  const auto menu = openMenu(item);
  ASSERT_TRUE(menu);
  EXPECT_EQ(reader_->rows(menu).front(), "item: mappings.json: " + std::string(40, 'x') + " " +
                                             std::string(500, 'y') + " end \xEF\xBF\xBD (disabled)");
  EXPECT_LT(rowArea("Edit mappings.json").width, 800) << "no wider than the screen";
}

TEST_F(StatusItemTest, TimersOfTheDefaultModeWaitWhileTheMenuIsOpen) {
  ASSERT_TRUE(openMenu(showItem()));
  const auto before = program().heard().size();
  tell("timer");
  tell("title ⌥ H");
  ASSERT_TRUE(screen.awaitWindow("⌥ H")) << "everything else goes on";
  EXPECT_EQ(program().heard().size(), before + 2) << "ready, ready";
  screen.press(XK_Escape);
  EXPECT_TRUE(program().hears("tick"));
}

TEST_F(StatusItemTest, WithoutATrayItSaysSoOnceAndShowsWhenThereIsOne) {
  tell("title ⌥");
  const std::string line =
      "no tray: to see keyvora's letters and menu, start a panel that shows status items, such as "
      "xfce4-panel, or a system tray, such as trayer. Key sequences work without it; \"pkill -x keyvora\" "
      "ends keyvora.";
  EXPECT_TRUE(program().hears(line));
  EXPECT_EQ(screen.window("⌥"), std::nullopt);
  session.startTray();
  EXPECT_TRUE(screen.awaitWindow("⌥"));
  session.endTray();
  EXPECT_TRUE(screen.awaitNoWindow("⌥"));
  tell("timer");
  EXPECT_TRUE(program().hears("tick"));
  EXPECT_EQ(std::ranges::count(program().heard(), line), 1);
}

TEST_F(StatusItemTest, KeysAreHandledBetweenTheStepsThatOpenTheToolkit) {
  tell("title ⌥");
  tell("watch");
  session.startTray();
  ASSERT_TRUE(screen.awaitWindow("⌥"));
  program().say("passes");
  EXPECT_GE(std::stoi(program().answer()), 2) << "before the theme is loaded, and before the item is made";
}

TEST_F(StatusItemTest, ItComesBackWhenTheTrayDoes) {
  auto item = showItem();
  for (int time = 0; time < 3; ++time) {
    session.endTray();
    EXPECT_TRUE(screen.awaitNoWindow("⌥"));
    tell("title ⌥ H" + std::to_string(time));
    session.startTray();
    EXPECT_TRUE(screen.awaitWindow("⌥ H" + std::to_string(time)));
    tell("title ⌥");
    item = awaitItem("⌥").value_or(Screen::Area{});
  }
  const auto menu = openMenu(item);
  ASSERT_TRUE(menu);
  EXPECT_EQ(reader_->rows(menu), firstMenu);
  EXPECT_EQ(screen.managedWindows(), 1u) << "the tray's";
  EXPECT_EQ(program().errors(), "");
}

TEST_F(StatusItemTest, ATrayThatDiesUnderAnOpenMenuIsSurvived) {
  ASSERT_TRUE(openMenu(showItem()));
  session.endTray();
  EXPECT_TRUE(screen.awaitNoWindow("⌥"));
  screen.press(XK_Escape);
  session.startTray();
  const auto item = awaitItem("⌥");
  ASSERT_TRUE(item);
  EXPECT_TRUE(awaitClosed());
  EXPECT_TRUE(openMenu(*item));
  tell("timer");
  screen.press(XK_Escape);
  EXPECT_TRUE(program().hears("tick")) << "no menu counts as open any more";
}

TEST_F(StatusItemTest, ATransparentTrayGetsATransparentItem) {
  const auto item = showItem({"--transparent", "true", "--alpha", "100", "--tint", "0xffffff"});
  EXPECT_TRUE(openMenu(item));
  EXPECT_EQ(program().errors(), "");
}

TEST_F(StatusItemTest, DestroyingTheItemTakesItAway) {
  showItem();
  tell("destroy");
  EXPECT_TRUE(screen.awaitNoWindow("⌥"));
}

}  // namespace
}  // namespace keyvora::x11
