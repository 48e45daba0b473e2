// A GTK application with a menu bar, on the display that DISPLAY names, for tests to read and press. Its
// arguments select one of these forms:
//
//   (none)     a window with a menu bar, and another menu bar further down
//   no-bar     a window without a menu bar
//   stale      also a menu whose item is disabled until its menu opens; exports its menus on the session bus
//   documents TITLE...   a window with a menu bar for each title; prints "window NUMBER" for each, and its
//              item Save is called "Save 1", "Save 2" and so on
//
// It reads commands from standard input: "hang" makes it stop answering, "rename" gives the item Save another
// title, "entry" prints what was typed into it, "present NUMBER" activates a document. Prints "window NUMBER"
// and "ready" at its start, "ready" after each command, and "pressed TITLE" when an item is chosen. When
// something was typed, it takes note of that a while after the keys, and prints "noted TEXT" before an item.

#include <gdk/gdkx.h>
#include <gtk/gtk.h>
#include <unistd.h>

#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include "hosts/x11/loop/glib_source.h"

namespace {

GtkWidget* saveItem = nullptr;
GtkWidget* entry = nullptr;
std::string noted;

void say(const std::string& line) {
  std::cout << line << std::endl;
}

/// Takes note of what was typed, a while after the first key.
void takeNote() {
  static guint timer = 0;
  constexpr guint delay = 10;  // in milliseconds, as in gnumeric
  const auto note = +[](gpointer) -> gboolean {
    timer = 0;
    noted = gtk_entry_get_text(GTK_ENTRY(entry));
    return G_SOURCE_REMOVE;
  };
  if (timer == 0) timer = g_timeout_add(delay, note, nullptr);
}

GtkWidget* item(GtkWidget* menu, const char* title) {
  GtkWidget* made = gtk_menu_item_new_with_mnemonic(title);
  const auto pressed = +[](GtkWidget* chosen) {
    if (!noted.empty()) say("noted " + noted);
    say(std::string("pressed ") + gtk_label_get_text(GTK_LABEL(gtk_bin_get_child(GTK_BIN(chosen)))));
  };
  g_signal_connect(made, "activate", G_CALLBACK(pressed), nullptr);
  gtk_menu_shell_append(GTK_MENU_SHELL(menu), made);
  return made;
}

GtkWidget* submenu(GtkWidget* parent, const char* title) {
  GtkWidget* opener = gtk_menu_item_new_with_mnemonic(title);
  gtk_menu_shell_append(GTK_MENU_SHELL(parent), opener);
  GtkWidget* menu = gtk_menu_new();
  gtk_menu_item_set_submenu(GTK_MENU_ITEM(opener), menu);
  return menu;
}

/// A menu whose item is updated when the menu opens. Only its exported action opens it here.
GtkWidget* addStaleMenu(GtkWidget* bar) {
  GtkWidget* stale = item(submenu(submenu(bar, "_Edit"), "Paste _Special"), "Values");
  gtk_widget_set_sensitive(stale, FALSE);
  return stale;
}

GMenuItem* exportedSubmenu(const char* label, const char* action, GMenu* menu) {
  GMenuItem* made = g_menu_item_new_submenu(label, G_MENU_MODEL(menu));
  g_menu_item_set_attribute(made, "submenu-action", "s", action);
  return made;
}

/// Exports the stale menu with the window, in a section as LibreOffice does.
void exportMenus(GtkWidget* window, GtkWidget* stale) {
  GMenu* special = g_menu_new();
  g_menu_append(special, "Values", "win.values");
  GMenu* edit = g_menu_new();
  g_menu_append_item(edit, exportedSubmenu("Paste _Special", "win.special", special));
  GMenu* section = g_menu_new();
  g_menu_append_item(section, exportedSubmenu("_Edit", "win.edit", edit));
  GMenu* bar = g_menu_new();
  g_menu_append_section(bar, nullptr, G_MENU_MODEL(section));

  const auto changed = +[](GSimpleAction* action, GVariant* state, gpointer item) {
    const bool isOpen = g_variant_get_boolean(state) != FALSE;
    say(std::string(isOpen ? "opened " : "closed ") + g_action_get_name(G_ACTION(action)));
    if (isOpen && std::string_view(g_action_get_name(G_ACTION(action))) == "special") {
      gtk_widget_set_sensitive(GTK_WIDGET(item), TRUE);
    }
  };
  GSimpleActionGroup* actions = g_simple_action_group_new();
  for (const char* name : {"edit", "special"}) {
    GSimpleAction* action = g_simple_action_new_stateful(name, nullptr, g_variant_new_boolean(FALSE));
    g_signal_connect(action, "change-state", G_CALLBACK(changed), stale);
    g_action_map_add_action(G_ACTION_MAP(actions), G_ACTION(action));
  }
  GDBusConnection* bus = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr);
  g_dbus_connection_export_menu_model(bus, "/test/menus", G_MENU_MODEL(bar), nullptr);
  g_dbus_connection_export_action_group(bus, "/test/window", G_ACTION_GROUP(actions), nullptr);
  GdkWindow* shown = gtk_widget_get_window(window);
  gdk_x11_window_set_utf8_property(shown, "_GTK_UNIQUE_BUS_NAME", g_dbus_connection_get_unique_name(bus));
  gdk_x11_window_set_utf8_property(shown, "_GTK_MENUBAR_OBJECT_PATH", "/test/menus");
  gdk_x11_window_set_utf8_property(shown, "_GTK_WINDOW_OBJECT_PATH", "/test/window");
}

GtkWidget* menuBar() {
  GtkWidget* bar = gtk_menu_bar_new();
  GtkWidget* file = submenu(bar, "_File");
  saveItem = item(file, "_Save");
  gtk_menu_shell_append(GTK_MENU_SHELL(file), gtk_separator_menu_item_new());
  item(file, "Save As…");
  gtk_widget_set_sensitive(item(file, "Revert"), FALSE);
  GtkWidget* recent = submenu(file, "Recent");
  item(recent, "book.xlsx");
  item(submenu(bar, "F_ormat"), "Cells...");
  return bar;
}

GtkWidget* otherMenuBar() {
  GtkWidget* bar = gtk_menu_bar_new();
  item(submenu(bar, "Other"), "Nothing");
  return bar;
}

void sayNumber(GtkWidget* window) {
  say("window " + std::to_string(GDK_WINDOW_XID(gtk_widget_get_window(window))));
}

std::vector<GtkWidget*> documents;

void showDocument(const char* title) {
  GtkWidget* window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
  gtk_window_set_title(GTK_WINDOW(window), title);
  GtkWidget* bar = gtk_menu_bar_new();
  documents.push_back(window);
  item(submenu(bar, "File"), ("Save " + std::to_string(documents.size())).c_str());
  gtk_container_add(GTK_CONTAINER(window), bar);
  gtk_widget_show_all(window);
  sayNumber(window);
}

void showWindow(std::string_view kind) {
  GtkWidget* window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
  gtk_window_set_title(GTK_WINDOW(window), "menu program");
  GtkWidget* box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
  gtk_container_add(GTK_CONTAINER(window), box);
  GtkWidget* stale = nullptr;
  if (kind != "no-bar") {
    GtkWidget* inner = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
    GtkWidget* bar = menuBar();
    if (kind == "stale") stale = addStaleMenu(bar);
    gtk_container_add(GTK_CONTAINER(inner), bar);
    gtk_container_add(GTK_CONTAINER(box), inner);
    gtk_container_add(GTK_CONTAINER(box), otherMenuBar());
  }
  entry = gtk_entry_new();
  g_signal_connect(entry, "changed", G_CALLBACK(takeNote), nullptr);
  gtk_container_add(GTK_CONTAINER(box), entry);
  gtk_widget_show_all(window);
  sayNumber(window);
  if (stale != nullptr) exportMenus(window, stale);
}

void obey(const std::string& line) {
  constexpr std::string_view present = "present ";
  if (line == "rename") gtk_menu_item_set_label(GTK_MENU_ITEM(saveItem), "Store");
  if (line == "entry") say(gtk_entry_get_text(GTK_ENTRY(entry)));
  if (line.starts_with(present)) {
    gtk_window_present(GTK_WINDOW(documents.at(std::stoul(line.substr(present.size())) - 1)));
  }
  say("ready");
  while (line == "hang") pause();
}

}  // namespace

int main(int argc, char** argv) {
  gtk_init(nullptr, nullptr);
  const std::string_view kind = argc < 2 ? "" : argv[1];
  if (kind == "documents") {
    for (int i = 2; i < argc; ++i) showDocument(argv[i]);
  } else {
    showWindow(kind);
  }

  std::string pending;
  const keyvora::x11::ReadableSource input(STDIN_FILENO, G_PRIORITY_DEFAULT, [&] {
    char bytes[256];
    const auto size = read(STDIN_FILENO, bytes, sizeof bytes);
    if (size <= 0) return gtk_main_quit();
    pending.append(bytes, static_cast<std::size_t>(size));
    for (std::size_t end = 0; (end = pending.find('\n')) != std::string::npos; pending.erase(0, end + 1)) {
      obey(pending.substr(0, end));
    }
  });
  say("ready");
  gtk_main();
}
