#pragma once

#include <gtk/gtk.h>

#include <functional>
#include <vector>

#include "platform/menu.h"

namespace keyvora::x11 {

/// A menu as it is open: a GtkMenu made of the rows. Key letters choose their row with Control, our Command,
/// or by themselves, while it is open. Main thread; needs a display.
class StatusMenu {
 public:
  /// `onClose` runs when the menu has closed, before the command that was chosen, if any; it may destroy
  /// this object in a later pass of the loop, not at once.
  StatusMenu(const platform::Menu& menu, std::function<void()> onClose);
  ~StatusMenu();
  StatusMenu(const StatusMenu&) = delete;
  StatusMenu& operator=(const StatusMenu&) = delete;

  /// Opens the menu at the widget; `event` is what the user did, null when an assistive tool did it. False
  /// when it could not be opened.
  bool open(GtkWidget* widget, const GdkEvent* event);

  /// Opens the menu at a place of the screen, in its pixels, for a click that came from elsewhere.
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
