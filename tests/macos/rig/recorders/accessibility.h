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

  /// Adds the menu item that the titles lead to, from the menu bar down, and what is missing above it. As on
  /// a Mac each menu bar item and each item with a submenu has one untitled menu between it and its items. A
  /// title "#5" is a number.
  void add(const std::vector<std::string>& titles);
  /// Takes all away again: the application has no menu bar.
  void clear();
};

/// The next call that the target application has to answer (a press, a script) takes this long.
void hangOnce(std::chrono::milliseconds time);
/// Waits as long as `hangOnce` said, once.
void waitForTarget();

}  // namespace keyvora::rig
