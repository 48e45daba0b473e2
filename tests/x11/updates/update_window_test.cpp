#include "hosts/x11/updates/update_window.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <gtk/gtk.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "hosts/x11/toolkit.h"
#include "tests/x11/private_display.h"

namespace keyvora::x11 {
namespace {

using appcast::Choice;
using testing::ElementsAre;
using testing::IsEmpty;

/// The display of the process's toolkit; it exists until the process ends.
void ensureToolkit() {
  static const PrivateDisplay display;
  static const bool started = [] {
    setenv("DISPLAY", display.name().c_str(), 1);
    setenv("NO_AT_BRIDGE", "1", 1);
    return openDisplay() && openToolkit();
  }();
  ASSERT_TRUE(started);
}

GtkWindow* shownWindow() {
  GtkWindow* found = nullptr;
  GList* windows = gtk_window_list_toplevels();
  for (GList* at = windows; at != nullptr; at = at->next) {
    if (gtk_widget_get_visible(GTK_WIDGET(at->data))) found = GTK_WINDOW(at->data);
  }
  g_list_free(windows);
  return found;
}

void visit(GtkWidget* widget, const std::function<void(GtkWidget*)>& look) {
  look(widget);
  if (!GTK_IS_CONTAINER(widget)) return;
  GList* children = gtk_container_get_children(GTK_CONTAINER(widget));
  for (GList* at = children; at != nullptr; at = at->next) visit(GTK_WIDGET(at->data), look);
  g_list_free(children);
}

/// The window's content, from top to bottom: labels, notes, buttons in brackets, an ellipsis for a spinner.
std::vector<std::string> contents() {
  std::vector<std::string> lines;
  if (shownWindow() == nullptr) return lines;
  visit(GTK_WIDGET(shownWindow()), [&lines](GtkWidget* widget) {
    GtkWidget* parent = gtk_widget_get_parent(widget);
    if (GTK_IS_BUTTON(widget))
      lines.push_back(std::string("[") + gtk_button_get_label(GTK_BUTTON(widget)) + "]");
    if (GTK_IS_LABEL(widget) && !GTK_IS_BUTTON(parent))
      lines.emplace_back(gtk_label_get_text(GTK_LABEL(widget)));
    if (GTK_IS_SPINNER(widget)) lines.emplace_back("…");
    if (GTK_IS_TEXT_VIEW(widget)) {
      GtkTextBuffer* buffer = gtk_text_view_get_buffer(GTK_TEXT_VIEW(widget));
      GtkTextIter start;
      GtkTextIter end;
      gtk_text_buffer_get_bounds(buffer, &start, &end);
      char* text = gtk_text_buffer_get_text(buffer, &start, &end, FALSE);
      lines.emplace_back(text);
      g_free(text);
    }
  });
  return lines;
}

void press(const std::string& label) {
  GtkWidget* button = nullptr;
  visit(GTK_WIDGET(shownWindow()), [&](GtkWidget* widget) {
    if (GTK_IS_BUTTON(widget) && label == gtk_button_get_label(GTK_BUTTON(widget))) button = widget;
  });
  ASSERT_NE(button, nullptr) << label;
  gtk_button_clicked(GTK_BUTTON(button));
}

class UpdateWindowTest : public testing::Test {
 protected:
  void SetUp() override { ensureToolkit(); }

  void showUpdate() {
    window.showUpdate({"1.3", "1.2", "• faster\n• better", "", "https://example.org/get"},
                      [this](Choice choice) { chosen.push_back(choice); });
  }

  UpdateWindow window;
  std::vector<Choice> chosen;
  int told = 0;
};

TEST_F(UpdateWindowTest, NothingShowsAtFirst) {
  EXPECT_TRUE(window.isAvailable());
  EXPECT_THAT(contents(), IsEmpty());
  window.bringForward();
  window.close();
  EXPECT_THAT(contents(), IsEmpty());
}

TEST_F(UpdateWindowTest, ShowsThatItIsLooking) {
  window.showChecking([this] { ++told; });
  EXPECT_THAT(contents(), ElementsAre("Looking for updates…", "…", "[Cancel]"));
  press("Cancel");
  EXPECT_EQ(told, 1);
  EXPECT_THAT(contents(), IsEmpty());
}

TEST_F(UpdateWindowTest, ShowsAnUpdateWithItsNotesAndWhereToGetIt) {
  showUpdate();
  EXPECT_THAT(
      contents(),
      ElementsAre("keyvora 1.3 is available",
                  "This is version 1.2. Your package manager installs updates.\nhttps://example.org/get",
                  "• faster\n• better", "[Skip This Version]", "[Later]", "[Open Web Page]"));
}

TEST_F(UpdateWindowTest, WithoutNotesOrAnAddressTheyAreLeftOut) {
  window.showUpdate({"1.3", "1.2", "", "", ""}, [](Choice) {});
  EXPECT_THAT(contents(), ElementsAre("keyvora 1.3 is available",
                                      "This is version 1.2. Your package manager installs updates.",
                                      "[Skip This Version]", "[Later]"));
}

TEST_F(UpdateWindowTest, NotesThatAreAPageAreALink) {
  window.showUpdate({"1.3", "1.2", "", "https://example.org/n?a=1&b=<2>", ""}, [](Choice) {});
  EXPECT_THAT(
      contents(),
      ElementsAre("keyvora 1.3 is available", "This is version 1.2. Your package manager installs updates.",
                  "Release notes: https://example.org/n?a=1&b=<2>", "[Skip This Version]", "[Later]"));
  std::string link;
  visit(GTK_WIDGET(shownWindow()), [&link](GtkWidget* widget) {
    if (GTK_IS_LABEL(widget) &&
        std::string_view(gtk_label_get_label(GTK_LABEL(widget))).starts_with("Release"))
      link = gtk_label_get_label(GTK_LABEL(widget));
  });
  EXPECT_NE(link.find("<a href=\"https://example.org/n?a=1&amp;b=&lt;2&gt;\">"), std::string::npos) << link;
}

TEST_F(UpdateWindowTest, EachButtonIsAChoice) {
  for (const auto& [label, choice] :
       {std::pair("Skip This Version", Choice::skip), std::pair("Later", Choice::later),
        std::pair("Open Web Page", Choice::open)}) {
    chosen.clear();
    showUpdate();
    press(label);
    EXPECT_THAT(chosen, ElementsAre(choice)) << label;
    EXPECT_THAT(contents(), IsEmpty());
  }
}

TEST_F(UpdateWindowTest, ClosingTheWindowMeansLater) {
  showUpdate();
  gtk_window_close(shownWindow());
  EXPECT_TRUE(runUntil([this] { return !chosen.empty(); }));
  EXPECT_THAT(chosen, ElementsAre(Choice::later));
}

TEST_F(UpdateWindowTest, EscapeClosesTheWindow) {
  showUpdate();
  GdkEvent* event = gdk_event_new(GDK_KEY_PRESS);
  event->key.window = GDK_WINDOW(g_object_ref(gtk_widget_get_window(GTK_WIDGET(shownWindow()))));
  event->key.keyval = GDK_KEY_Escape;
  gdk_event_set_device(event, gdk_seat_get_keyboard(gdk_display_get_default_seat(gdk_display_get_default())));
  gtk_widget_event(GTK_WIDGET(shownWindow()), event);
  gdk_event_free(event);
  EXPECT_TRUE(runUntil([this] { return !chosen.empty(); }));
  EXPECT_THAT(chosen, ElementsAre(Choice::later));
}

TEST_F(UpdateWindowTest, OneWindowShowsOneThingAfterAnother) {
  window.showChecking([this] { ++told; });
  GtkWindow* first = shownWindow();
  window.showMessage("keyvora is up to date", "keyvora 1.2 is the newest version.", [this] { told += 10; });
  EXPECT_EQ(shownWindow(), first);
  EXPECT_THAT(contents(), ElementsAre("keyvora is up to date", "keyvora 1.2 is the newest version.", "[OK]"));
  press("OK");
  EXPECT_EQ(told, 10);
}

TEST_F(UpdateWindowTest, TakenAwayItTellsNobody) {
  showUpdate();
  window.close();
  EXPECT_THAT(chosen, IsEmpty());
  EXPECT_THAT(contents(), IsEmpty());
}

TEST_F(UpdateWindowTest, TheAnswerMayShowTheNextThing) {
  window.showMessage("one", "", [this] { window.showMessage("two", "", {}); });
  press("OK");
  EXPECT_THAT(contents(), ElementsAre("two", "[OK]"));
}

TEST_F(UpdateWindowTest, OnlyAnUpdateShowsInTheTaskBar) {
  window.showMessage("one", "", {});
  EXPECT_TRUE(gtk_window_get_skip_taskbar_hint(shownWindow()));
  showUpdate();
  EXPECT_FALSE(gtk_window_get_skip_taskbar_hint(shownWindow()));
}

TEST_F(UpdateWindowTest, TextsOfAFeedAreShownAsTextWhateverTheyHold) {
  window.showUpdate({"<b>1.3</b>", "1.2",
                     "a\xFF"
                     "b <i>&amp;</i>",
                     "", ""},
                    [](Choice) {});
  const auto lines = contents();
  ASSERT_EQ(lines.size(), 5U);
  EXPECT_EQ(lines[0], "keyvora <b>1.3</b> is available");
  EXPECT_EQ(lines[2], "a\uFFFDb <i>&amp;</i>");
}

}  // namespace
}  // namespace keyvora::x11
