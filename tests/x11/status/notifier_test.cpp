#include <X11/keysym.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <sstream>

#include "tests/x11/conversation.h"
#include "tests/x11/private_session.h"
#include "tests/x11/screen.h"
#include "tests/x11/status/narrow_tray.h"
#include "tests/x11/status/panel_stand_in.h"

/// The item as a status notifier, as panels use it on the session bus.
namespace keyvora::x11 {
namespace {

/// The font files that a process has open.
std::set<std::string> fontsOf(pid_t process) {
  std::istringstream mapped(readFile("/proc/" + std::to_string(process) + "/maps"));
  std::set<std::string> fonts;
  for (std::string line; std::getline(mapped, line);) {
    const auto path = line.find('/');
    if (path != std::string::npos && line.find("/share/fonts/", path) != std::string::npos) {
      fonts.insert(line.substr(path));
    }
  }
  return fonts;
}

class NotifierTest : public testing::Test {
 protected:
  void start() {
    program = std::make_unique<Conversation>(std::vector<std::string>{STATUS_ITEM_PROGRAM});
    tell("title ⌥");
    tell("menu first");
  }

  void TearDown() override { endProgram(); }

  /// A test with a tray of its own does this before the tray goes: GDK leaks when it is drawing just then.
  void endProgram() {
    if (!program) return;
    const int status = program->end();
    EXPECT_EQ(status, 0) << program->errors();
    program.reset();
  }

  void tell(const std::string& line) {
    program->say(line);
    ASSERT_TRUE(program->hears("ready"));
  }

  void startIn(PanelStandIn::Kind kind) {
    panel = std::make_unique<PanelStandIn>(kind);
    start();
    ASSERT_TRUE(panel->awaitItem());
  }

  std::string text(const char* property) {
    const auto value = panel->property(property);
    return value ? g_variant_get_string(value.get(), nullptr) : "none";
  }

  int identifierOf(const std::string& row) {
    const auto rows = panel->rows();
    const auto found =
        std::ranges::find_if(rows, [&](const auto& each) { return each.text.starts_with(row); });
    EXPECT_NE(found, rows.end()) << row;
    return found == rows.end() ? -1 : found->identifier;
  }

  /// Receives everything that the program has sent up to now.
  void settle() {
    EXPECT_EQ(text("Status"), "Active");
    while (g_main_context_iteration(nullptr, FALSE)) {
    }
  }

  bool saidNothingAfter(std::size_t lines) {
    program->say("");
    EXPECT_TRUE(program->hears("ready"));
    return program->heard().size() == lines + 1;
  }

  PrivateSession session;
  std::unique_ptr<PanelStandIn> panel;
  std::unique_ptr<Conversation> program;
};

TEST_F(NotifierTest, WhereAPanelIsTheToolkitStaysClosedUntilTheMenuIsAskedFor) {
  startIn({});
  program->say("toolkit");
  EXPECT_EQ(program->answer(), "closed");
  EXPECT_TRUE(panel->callItem("Activate", g_variant_new("(ii)", 100, 100)));
  EXPECT_TRUE(runUntil([this] {
    program->say("toolkit");
    return program->answer() == "open";
  }));
  Screen screen;
  screen.press(XK_e, XK_Control_L);
  EXPECT_TRUE(program->hears("chose Edit mappings.json"));
}

TEST_F(NotifierTest, TheFontsForTheLettersAreOpenBeforeTheFirstLetter) {
  startIn({});
  const auto open = fontsOf(program->pid());
  EXPECT_FALSE(open.empty());
  tell("title ⌥ H");
  EXPECT_TRUE(panel->property("IconPixmap"));
  EXPECT_EQ(fontsOf(program->pid()), open);
}

TEST_F(NotifierTest, ItIsNeverInATrayAndInAPanel) {
  session.startTray();
  Screen screen;
  panel = std::make_unique<PanelStandIn>(PanelStandIn::Kind{.hasHost = false});
  start();
  EXPECT_TRUE(screen.awaitWindow("⌥")) << "a watcher without a host shows nothing";
  EXPECT_TRUE(panel->registered().empty());
  panel->setHost(true);
  EXPECT_TRUE(panel->awaitItem());
  EXPECT_TRUE(screen.awaitNoWindow("⌥"));
  panel->setHost(false);
  EXPECT_TRUE(screen.awaitWindow("⌥"));
  panel->setHost(true);
  EXPECT_TRUE(panel->awaitItem(1));
  EXPECT_TRUE(screen.awaitNoWindow("⌥"));
  panel.reset();
  EXPECT_TRUE(screen.awaitWindow("⌥"));
}

TEST_F(NotifierTest, APanelThatStartsAnewIsToldAgain) {
  startIn({});
  for (int time = 0; time < 3; ++time) {
    panel.reset();
    tell("title ⌥ H" + std::to_string(time));
    panel = std::make_unique<PanelStandIn>(PanelStandIn::Kind{});
    ASSERT_TRUE(panel->awaitItem());
    EXPECT_EQ(text("IconAccessibleDesc"), "⌥ H" + std::to_string(time));
    EXPECT_EQ(panel->rows().size(), 7u);
  }
}

TEST_F(NotifierTest, AnItemThatThePanelDropsIsRegisteredAgainAFewTimes) {
  startIn({});
  const auto name = panel->registered().back();
  panel->drop((name + "/StatusNotifierItem").c_str());
  EXPECT_TRUE(panel->awaitItem(1));
  panel->drop(name.c_str());
  EXPECT_TRUE(panel->awaitItem(2));
  panel->drop("org.kde.StatusNotifierItem-1-1");
  panel->drop(":1.4711/StatusNotifierItem");
  settle();
  EXPECT_EQ(panel->registered().size(), 3u) << "those are other programs'";
  for (int time = 0; time < 5; ++time) {
    panel->drop(name.c_str());
    settle();
  }
  EXPECT_EQ(panel->registered().size(), 5u);
}

TEST_F(NotifierTest, TheItemSaysWhatItShows) {
  startIn({});
  tell("title ⌥ HF");
  EXPECT_EQ(text("Id"), "keyvora");
  EXPECT_EQ(text("Title"), "keyvora");
  EXPECT_EQ(text("Status"), "Active");
  EXPECT_EQ(text("Category"), "ApplicationStatus");
  EXPECT_EQ(text("IconAccessibleDesc"), "⌥ HF");
  EXPECT_EQ(text("Menu"), "/MenuBar");
  EXPECT_EQ(text("XAyatanaLabel"), "");
  const auto tip = panel->property("ToolTip");
  ASSERT_TRUE(tip);
  const GText printed(g_variant_print(tip.get(), FALSE));
  EXPECT_STREQ(printed.get(), "('', [], '⌥ HF', '12 sequences, ready')");
}

TEST_F(NotifierTest, IconsAreDrawnForEachSizeInTheOrderOfTheProtocol) {
  startIn({});
  const auto icons = panel->property("IconPixmap");
  ASSERT_TRUE(icons);
  std::vector<int> sizes;
  GVariantIter iterator;
  g_variant_iter_init(&iterator, icons.get());
  int width = 0;
  int height = 0;
  GVariant* raw = nullptr;
  while (g_variant_iter_next(&iterator, "(ii@ay)", &width, &height, &raw)) {
    const GVariantRef data(raw);
    sizes.push_back(width);
    gsize count = 0;
    const auto* bytes = static_cast<const unsigned char*>(g_variant_get_fixed_array(raw, &count, 1));
    ASSERT_EQ(count, static_cast<gsize>(width) * static_cast<gsize>(height) * 4);
    EXPECT_LT(bytes[0], 16) << "the corner is all but transparent";
    const auto middleOfTop =
        static_cast<std::size_t>(width / 2 + width) * 4;  // a pixel of the dark background
    EXPECT_EQ(bytes[middleOfTop], 255) << "alpha comes first";
    EXPECT_EQ(bytes[middleOfTop + 1], 33) << "the ground's gray";
  }
  EXPECT_EQ(sizes, (std::vector<int>{16, 22, 24, 32, 48}));
}

TEST_F(NotifierTest, TheMenuIsSentRowByRow) {
  startIn({});
  std::vector<std::string> texts;
  for (const auto& row : panel->rows()) texts.push_back(row.text);
  EXPECT_EQ(texts, (std::vector<std::string>{
                       "12 sequences, ready (disabled)", "separator", "Edit mappings.json [['Control', 'e']]",
                       "Reload__mappings [['Control', 'r']]", "Launch at Login (checked)", "separator",
                       "Quit keyvora [['Control', 'q']]"}));
}

TEST_F(NotifierTest, APanelMayAskForOneThingAboutARow) {
  startIn({});
  const auto answerFor = [this](int row, const char* name) {
    const auto answer = panel->callMenu("GetProperty", g_variant_new("(is)", row, name));
    if (!answer) return "error " + panel->error;
    const GText printed(g_variant_print(answer.get(), FALSE));
    return std::string(printed.get());
  };
  const int edit = identifierOf("Edit");
  EXPECT_EQ(answerFor(edit, "label"), "(<'Edit mappings.json'>,)");
  EXPECT_EQ(answerFor(edit, "enabled"), "(<true>,)");
  EXPECT_EQ(answerFor(0, "children-display"), "(<'submenu'>,)");
  EXPECT_EQ(answerFor(edit, "no such thing"), "(<''>,)");
  EXPECT_EQ(answerFor(4711, "label"), "(<''>,)") << "the row of an earlier menu";
}

TEST_F(NotifierTest, AClickRunsARowAndNothingElseDoes) {
  startIn({});
  panel->event(identifierOf("Edit mappings.json"), "clicked");
  EXPECT_TRUE(program->hears("chose Edit mappings.json"));
  const auto before = program->heard().size();
  panel->event(identifierOf("12 sequences"), "clicked");
  panel->event(identifierOf("Edit mappings.json"), "hovered");
  panel->event(4711, "clicked");
  panel->event(-1, "clicked");
  EXPECT_TRUE(saidNothingAfter(before));
}

TEST_F(NotifierTest, RowsOfAMenuThatWasReplacedChooseNothing) {
  startIn({});
  const int quit = identifierOf("Quit keyvora");
  const int edit = identifierOf("Edit mappings.json");
  tell("menu second");
  const auto before = program->heard().size();
  panel->event(quit, "clicked");
  panel->event(edit, "clicked");
  EXPECT_TRUE(saidNothingAfter(before));
  panel->event(identifierOf("Edit mappings.json"), "clicked");
  EXPECT_TRUE(program->hears("chose Edit mappings.json"));
}

TEST_F(NotifierTest, AMenuThatLooksTheSameIsNotReadAgainAndGetsItsNewActions) {
  startIn({});
  const int edit = identifierOf("Edit mappings.json");
  settle();
  const auto before = panel->layouts();
  tell("menu like first");
  settle();
  EXPECT_EQ(panel->layouts(), before);
  panel->event(edit, "clicked");
  EXPECT_TRUE(program->hears("chose Edit mappings.json anew"));

  tell("menu second");
  settle();
  EXPECT_EQ(panel->layouts(), before + 1);
}

TEST_F(NotifierTest, AMenuThatDiffersInOneMarkIsReadAgain) {
  startIn({});
  settle();
  const auto before = panel->layouts();
  tell("menu unchecked");
  settle();
  EXPECT_EQ(panel->layouts(), before + 1);
}

TEST_F(NotifierTest, EventsInAGroupNameTheRowsThatAreNotThere) {
  startIn({});
  GVariantBuilder events;
  g_variant_builder_init(&events, G_VARIANT_TYPE("a(isvu)"));
  for (const int identifier : {4711, identifierOf("Reload__mappings")})
    g_variant_builder_add(&events, "(isvu)", identifier, "clicked", g_variant_new_int32(0), 0u);
  const auto answer = panel->callMenu("EventGroup", g_variant_new("(a(isvu))", &events));
  ASSERT_TRUE(answer);
  const GText printed(g_variant_print(answer.get(), FALSE));
  EXPECT_STREQ(printed.get(), "([4711],)");
  EXPECT_TRUE(program->hears("chose Reload_mappings"));
  EXPECT_TRUE(panel->callMenu("AboutToShow", g_variant_new("(i)", 0)));
  EXPECT_TRUE(panel->callMenu("AboutToShowGroup", g_variant_new_parsed("([0],)")));
}

TEST_F(NotifierTest, TimersOfTheDefaultModeWaitWhileThePanelShowsTheMenu) {
  startIn({});
  panel->event(0, "opened");
  auto before = program->heard().size();
  tell("timer");
  tell("title ⌥ H");
  EXPECT_EQ(program->heard().size(), before + 2) << "ready, ready";
  panel->event(0, "closed");
  EXPECT_TRUE(program->hears("tick"));

  panel->event(0, "opened");
  before = program->heard().size();
  tell("timer");
  tell("title ⌥ HF");
  EXPECT_EQ(program->heard().size(), before + 2);
  panel.reset();
  EXPECT_TRUE(program->hears("tick")) << "a panel that has crashed shows no menu";
}

TEST_F(NotifierTest, InGnomeTheLettersAreALabelAndEveryClickIsThePanels) {
  startIn({.isGnome = true});
  const auto signOnly = panel->property("IconPixmap");
  tell("title ⌥ ");
  const auto armed = panel->property("IconPixmap");
  tell("title ⌥ HF");
  const auto letters = panel->property("IconPixmap");
  ASSERT_TRUE(signOnly && armed && letters);
  EXPECT_FALSE(g_variant_equal(signOnly.get(), armed.get()));
  EXPECT_TRUE(g_variant_equal(armed.get(), letters.get()));
  EXPECT_EQ(text("XAyatanaLabel"), "HF");
  EXPECT_FALSE(panel->callItem("Activate", g_variant_new("(ii)", 1, 1)));
  EXPECT_EQ(panel->error, "org.freedesktop.DBus.Error.UnknownMethod");
}

TEST_F(NotifierTest, ASlotThatIsTooNarrowForTheTextShowsTheIcon) {
  for (const int size : {16, 22, 24}) {
    NarrowTray tray(size, size);
    start();
    ASSERT_TRUE(runUntil([&] { return tray.hasIcon(); })) << size;
    const int half = size * size / 2;
    EXPECT_TRUE(runUntil([&] { return tray.look().dark > half && tray.look().bright > size; }))
        << "idle " << size;
    tell("title ⌥ ");
    EXPECT_TRUE(runUntil([&] { return tray.look().bright > half; }))
        << "armed " << size << ": " << tray.look().bright << " bright, " << tray.look().dark << " dark";
    const auto armed = tray.look();
    tell("title ⌥ HF");
    EXPECT_TRUE(runUntil([&] { return tray.look() != armed && tray.look().bright > size * size / 3; }))
        << "letters " << size << ": " << tray.look().bright << " bright";
    tell("title ⌥");
    EXPECT_TRUE(runUntil([&] { return tray.look().dark > half; })) << "idle again " << size;
    program.reset();
  }
}

TEST_F(NotifierTest, AnItemThatGrewPastItsSlotFitsItAgainWhenItsTextDoes) {
  NarrowTray tray(40, 24);
  start();
  ASSERT_TRUE(runUntil([&] { return tray.hasIcon(); }));
  tell("title ⌥ HFCXYZ");
  EXPECT_TRUE(runUntil([&] { return tray.iconWidth() > 40; })) << "wider than the slot: it shows the icon";
  tell("title ⌥");
  EXPECT_TRUE(runUntil([&] { return tray.iconWidth() == 40; })) << "else the slot shows a part of the text";
  endProgram();
}

TEST_F(NotifierTest, WhenTheSessionBusEndsTheTrayHasTheItem) {
  startIn({});
  session.startTray();
  Screen screen;
  session.endBuses();
  EXPECT_TRUE(screen.awaitWindow("⌥"));
  tell("title ⌥ H");
  EXPECT_TRUE(screen.awaitWindow("⌥ H"));
  program.reset();  // with any exit status: GTK's bridge to assistive tools leaks when it finds no bus
}

}  // namespace
}  // namespace keyvora::x11
