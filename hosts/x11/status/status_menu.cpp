#include "hosts/x11/status/status_menu.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

#include "hosts/x11/gobject.h"
#include "text/utf8.h"

namespace keyvora::x11 {
namespace {

using Command = std::function<void()>;

/// Longer information lines wrap, so that they fit on the screen.
constexpr int longestLine = 60;

/// The letter that a key types in the user's layout; in a layout of another script, its letter in the next
/// layout with Latin letters.
std::optional<char> letterOf(const GdkEventKey& event) {
  const auto latin = [](guint keyval) -> std::optional<char> {
    const guint lower = gdk_keyval_to_lower(keyval);
    if (lower < GDK_KEY_a || lower > GDK_KEY_z) return std::nullopt;
    return static_cast<char>(lower);
  };
  if (const auto letter = latin(event.keyval)) return letter;
  if (gdk_keyval_to_unicode(event.keyval) == 0) return std::nullopt;  // a key without a character

  guint* keyvals = nullptr;
  gint count = 0;
  auto* keymap = gdk_keymap_get_for_display(gdk_window_get_display(event.window));
  if (!gdk_keymap_get_entries_for_keycode(keymap, event.hardware_keycode, nullptr, &keyvals, &count)) {
    return std::nullopt;
  }
  const std::unique_ptr<guint, GFree> owned(keyvals);
  for (gint index = 0; index < count; ++index) {
    if (const auto letter = latin(keyvals[index])) return letter;
  }
  return std::nullopt;
}

GtkWidget* makeItem(const platform::MenuRow& row) {
  if (row.isSeparator) return gtk_separator_menu_item_new();
  const auto title = text::validText(row.title);
  GtkWidget* item = row.checked ? gtk_check_menu_item_new_with_label(title.c_str())
                                : gtk_menu_item_new_with_label(title.c_str());
  if (row.checked) gtk_check_menu_item_set_active(GTK_CHECK_MENU_ITEM(item), TRUE);
  gtk_widget_set_sensitive(item, row.isEnabled());

  auto* label = GTK_ACCEL_LABEL(gtk_bin_get_child(GTK_BIN(item)));
  gtk_label_set_line_wrap(GTK_LABEL(label), TRUE);
  gtk_label_set_line_wrap_mode(GTK_LABEL(label), PANGO_WRAP_WORD_CHAR);
  gtk_label_set_max_width_chars(GTK_LABEL(label), longestLine);
  if (row.keyEquivalent != 0) {
    gtk_accel_label_set_accel(label, gdk_unicode_to_keyval(static_cast<guint>(row.keyEquivalent)),
                              GDK_CONTROL_MASK);
  }
  return item;
}

}  // namespace

StatusMenu::StatusMenu(const platform::Menu& menu, std::function<void()> onClose)
    : menu_(gtk_menu_new()), onClose_(std::move(onClose)) {
  g_object_ref_sink(menu_);
  for (const auto& row : menu.rows) append(row);
  const auto keyPressed =
      +[](GtkWidget*, GdkEventKey* event, StatusMenu* self) -> gboolean { return self->choose(*event); };
  const auto closed = +[](GtkWidget*, StatusMenu* self) { self->onClose_(); };
  g_signal_connect(menu_, "key-press-event", G_CALLBACK(keyPressed), this);
  g_signal_connect(menu_, "hide", G_CALLBACK(closed), this);
}

StatusMenu::~StatusMenu() {
  g_signal_handlers_disconnect_by_data(menu_, this);
  gtk_widget_destroy(menu_);
  g_object_unref(menu_);
}

void StatusMenu::append(const platform::MenuRow& row) {
  GtkWidget* item = makeItem(row);
  gtk_menu_shell_append(GTK_MENU_SHELL(menu_), item);
  gtk_widget_show_all(item);
  if (!row.isEnabled()) return;
  if (row.keyEquivalent != 0) keys_.push_back({row.keyEquivalent, item});
  const auto run = +[](GtkWidget*, Command* command) { (*command)(); };
  const auto free = +[](gpointer command, GClosure*) { delete static_cast<Command*>(command); };
  g_signal_connect_data(item, "activate", G_CALLBACK(run), new Command(row.action), free, GConnectFlags{});
}

bool StatusMenu::open(GtkWidget* widget, const GdkEvent* event) {
  gtk_menu_popup_at_widget(GTK_MENU(menu_), widget, GDK_GRAVITY_SOUTH_WEST, GDK_GRAVITY_NORTH_WEST, event);
  return isOpen();
}

bool StatusMenu::openAt(int x, int y) {
  GdkDisplay* display = gdk_display_get_default();
  GdkWindow* root = gdk_screen_get_root_window(gdk_display_get_default_screen(display));
  const int scale = gdk_window_get_scale_factor(root);
  const GdkRectangle place{x / scale, y / scale, 1, 1};

  // GTK grabs the device of the event that opens the menu. The panel received that event, so an event of
  // the same kind is made. It gets the current time, because querying the server's time would wait for the
  // panel.
  GdkEvent* event = gdk_event_new(GDK_BUTTON_RELEASE);
  event->button.window = GDK_WINDOW(g_object_ref(root));
  event->button.time = GDK_CURRENT_TIME;
  event->button.button = GDK_BUTTON_PRIMARY;
  gdk_event_set_device(event, gdk_seat_get_pointer(gdk_display_get_default_seat(display)));
  gtk_menu_popup_at_rect(GTK_MENU(menu_), root, &place, GDK_GRAVITY_SOUTH_WEST, GDK_GRAVITY_NORTH_WEST,
                         event);
  gdk_event_free(event);
  return isOpen();
}

bool StatusMenu::isOpen() const {
  return gtk_widget_get_visible(menu_);
}

bool StatusMenu::choose(const GdkEventKey& event) {
  const auto modifiers = event.state & gtk_accelerator_get_default_mod_mask();
  if (modifiers != 0 && modifiers != GDK_CONTROL_MASK) return false;
  const auto letter = letterOf(event);
  if (!letter) return false;
  const auto key = std::ranges::find(keys_, *letter, &Key::letter);
  if (key == keys_.end()) return false;
  gtk_menu_shell_activate_item(GTK_MENU_SHELL(menu_), key->item, TRUE);
  return true;
}

}  // namespace keyvora::x11
