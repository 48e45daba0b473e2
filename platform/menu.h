#pragma once

#include <functional>
#include <string>
#include <vector>

namespace keyvora::platform {

/// One row of a menu. A row without an action is shown disabled, as information.
struct MenuRow {
  /// UTF-8; empty for a separator.
  std::string title;
  /// Lower-case letter that chooses the row with Command while the menu is open; 0 for none.
  char keyEquivalent = 0;
  /// Runs on the main thread when the row is chosen.
  std::function<void()> action;
  /// The row ends the application, and its action does no more than that. On a system that has its own
  /// command for this, the host uses that command in place of the action.
  bool endsApplication = false;
  /// Shown with a check mark.
  bool checked = false;
  bool isSeparator = false;

  [[nodiscard]] bool isEnabled() const { return static_cast<bool>(action); }

  static MenuRow separator() {
    MenuRow row;
    row.isSeparator = true;
    return row;
  }
};

/// A menu as a plain value, in the order of its rows. Hosts render it and decide nothing.
struct Menu {
  std::vector<MenuRow> rows;
};

}  // namespace keyvora::platform
