#pragma once

#include <gtk/gtk.h>

#include <functional>
#include <vector>

#include "platform/menu.h"

namespace keyvora::x11 {

/// An open menu: a GtkMenu built from the rows. While it is open, a row's key letter chooses the row, with
/// Control (which is Command here) or alone. Main thread; needs a display.
class StatusMenu {
 public:
  /// `onClose` runs when the menu has closed, before the chosen command, if any. It may destroy this object
  /// in a later pass of the loop, but not at once.
  StatusMenu(const platform::Menu& menu, std::function<void()> onClose);
  ~StatusMenu();
  StatusMenu(const StatusMenu&) = delete;
  StatusMenu& operator=(const StatusMenu&) = delete;

  /// Opens the menu at the widget; `event` is the user's event, null when an assistive tool opened it.
  /// False when it could not be opened.
  bool open(GtkWidget* widget, const GdkEvent* event);

  /// Opens the menu at a position on the screen, in pixels, for a click in another program's window.
  bool openAt(int x, int y);

  [[nodiscard]] bool isOpen() const;

 private:
  struct Key {
    char letter;
    GtkWidget* item;
  };

  void append(const platform::MenuRow& row);
  bool choose(const GdkEventKey& event);

  GtkWidget* menu_;
  std::vector<Key> keys_;
  std::function<void()> onClose_;
};

}  // namespace keyvora::x11
