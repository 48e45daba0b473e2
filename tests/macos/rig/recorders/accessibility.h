#pragma once

#include <sys/types.h>

#include <chrono>
#include <string>
#include <vector>

namespace keyvora::rig {

/// Another application's menus.
class MenuTree {
 public:
  static MenuTree& shared();

  /// Adds the menu item with this path of titles, from the menu bar down, and any missing parents. As on a
  /// Mac, a menu bar item or an item with a submenu contains one untitled menu with its items. A title like
  /// "#5" is a number.
  void add(const std::vector<std::string>& titles);
  /// Removes everything: the application has no menu bar.
  void clear();
};

/// Makes the target application's next answer (to a press or a script) take this long.
void hangOnce(std::chrono::milliseconds time);
/// Waits for the time set by `hangOnce`, once.
void waitForTarget();

}  // namespace keyvora::rig
