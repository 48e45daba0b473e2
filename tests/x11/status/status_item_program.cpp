// Shows a status item on the display named by DISPLAY. Reads commands from standard input, one per line:
//
//   title TEXT   sets the title
//   menu NAME    sets one of the menus below
//   click        clicks the item as an assistive tool does
//   draws        prints how many times the item was drawn since the first such command
//   drawn        waits until everything that was to be drawn is, in the tray
//   toolkit      prints whether GTK is initialised
//   watch        from now on counts the passes of the loop in which a key would be handled while GTK is
//                initialised and the item is not in the tray yet
//   passes       prints their number
//   timer        starts a timer in the default mode, which prints "tick"
//   destroy      removes the item
//
// Prints "ready" at its start and after each command, and the names of the menu commands that are chosen.

#include <gtk/gtk.h>
#include <gtk/gtkx.h>
#include <unistd.h>

#include <iostream>
#include <map>

#include "hosts/x11/loop/glib_source.h"
#include "hosts/x11/status/status_bar.h"
#include "hosts/x11/toolkit.h"

namespace {

using namespace keyvora;

void say(const std::string& line) {
  std::cout << line << std::endl;
}

platform::MenuRow row(const std::string& title, char key, bool enabled, bool checked = false,
                      const std::string& when = "") {
  platform::MenuRow made;
  made.title = title;
  made.keyEquivalent = key;
  made.checked = checked;
  if (enabled) made.action = [title, when] { say("chose " + title + when); };
  return made;
}

platform::Menu firstMenu(bool checked, const std::string& when) {
  return {{row("12 sequences, ready", 0, false), platform::MenuRow::separator(),
           row("Edit mappings.json", 'e', true, false, when), row("Reload_mappings", 'r', true),
           row("Launch at Login", 0, true, checked), platform::MenuRow::separator(),
           row("Quit keyvora", 'q', true)}};
}

const std::map<std::string, platform::Menu>& menus() {
  static const std::map<std::string, platform::Menu> made{
      {"first", firstMenu(true, "")},
      {"like first", firstMenu(true, " anew")},
      {"unchecked", firstMenu(false, "")},
      {"second", {{row("13 sequences, ready", 0, false), row("Edit mappings.json", 'e', true)}}},
      {"long",
       {{row("mappings.json: " + std::string(40, 'x') + " " + std::string(500, 'y') + " end \xFF", 0, false),
         row("Edit mappings.json", 'e', true)}}},
  };
  return made;
}

/// The item's window in the tray.
GtkWidget* plug() {
  GtkWidget* found = nullptr;
  GList* windows = gtk_window_list_toplevels();
  for (GList* at = windows; at != nullptr; at = at->next) {
    if (GTK_IS_PLUG(at->data)) found = GTK_WIDGET(at->data);
  }
  g_list_free(windows);
  return found;
}

/// How many times the item was drawn since the first call.
int draws() {
  static int count = -1;
  const auto drawn = +[]() -> gboolean {
    ++count;
    return FALSE;
  };
  if (count < 0) {
    count = 0;
    g_signal_connect(plug(), "draw", G_CALLBACK(drawn), nullptr);
  }
  return count;
}

int passesWhileOpening = 0;

/// A source with the priority of the tap's, which is ready in every other pass of the loop: as often as it
/// can be without keeping lower priorities from running.
void watchOpening() {
  struct Source {
    GSource base;
    bool isReady;
  };
  static GSourceFuncs functions{[](GSource* source, gint* milliseconds) -> gboolean {
                                  *milliseconds = 0;
                                  auto& isReady = reinterpret_cast<Source*>(source)->isReady;
                                  isReady = !isReady;
                                  return isReady ? TRUE : FALSE;
                                },
                                nullptr,
                                [](GSource*, GSourceFunc, gpointer) -> gboolean {
                                  if (x11::isToolkitOpen() && plug() == nullptr) ++passesWhileOpening;
                                  return G_SOURCE_CONTINUE;
                                },
                                nullptr,
                                nullptr,
                                nullptr};
  GSource* source = g_source_new(&functions, sizeof(Source));
  g_source_set_priority(source, G_PRIORITY_HIGH);
  g_source_attach(source, nullptr);
  g_source_unref(source);
}

/// Long enough for a panel that is running to answer.
constexpr platform::Seconds shortPatience{0.5};

class Program {
 public:
  void obey(const std::string& line) {
    const auto space = line.find(' ');
    const auto verb = line.substr(0, space);
    const auto rest = space == std::string::npos ? "" : line.substr(space + 1);
    if (verb == "title") {
      item_->setTitle(rest);
    } else if (verb == "menu") {
      item_->setMenu(menus().at(rest));
    } else if (verb == "draws") {
      say(std::to_string(draws()));
    } else if (verb == "drawn") {
      gtk_test_widget_wait_for_draw(plug());
      gdk_display_sync(gtk_widget_get_display(plug()));
    } else if (verb == "toolkit") {
      say(x11::isToolkitOpen() ? "open" : "closed");
    } else if (verb == "watch") {
      watchOpening();
    } else if (verb == "passes") {
      say(std::to_string(passesWhileOpening));
    } else if (verb == "click") {
      gtk_button_clicked(GTK_BUTTON(gtk_bin_get_child(GTK_BIN(plug()))));
    } else if (verb == "timer") {
      timer_ = loop_.schedule({}, false, platform::TimerMode::defaultMode, [] { say("tick"); });
    } else if (verb == "destroy") {
      item_.reset();
    }
    say("ready");
  }

 private:
  std::unique_ptr<platform::StatusItem> makeItem() {
    bar_.onUnseen = [](std::string_view line) { say(std::string(line)); };
    return bar_.createItem();
  }

  x11::MainLoop loop_;
  x11::StatusBar bar_{loop_, shortPatience};
  std::unique_ptr<platform::StatusItem> item_ = makeItem();
  std::unique_ptr<platform::Timer> timer_;
};

}  // namespace

int main() {
  if (!x11::openDisplay()) return 1;
  Program program;
  std::string pending;
  GMainLoop* loop = g_main_loop_new(nullptr, FALSE);
  const x11::ReadableSource input(STDIN_FILENO, G_PRIORITY_DEFAULT, [&] {
    char bytes[4096];
    const auto size = read(STDIN_FILENO, bytes, sizeof bytes);
    if (size <= 0) g_main_loop_quit(loop);
    pending.append(bytes, size > 0 ? static_cast<std::size_t>(size) : 0);
    for (std::size_t end = 0; (end = pending.find('\n')) != std::string::npos; pending.erase(0, end + 1)) {
      program.obey(pending.substr(0, end));
    }
  });
  say("ready");
  g_main_loop_run(loop);
  g_main_loop_unref(loop);
}
