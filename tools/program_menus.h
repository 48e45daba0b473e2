#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "mapping/action.h"
#include "platform/accessibility.h"

namespace keyvora::tools {

/// The menus of a running program, which are read and never pressed. Each element is queried once. Main
/// thread; reading waits for the program.
class ProgramMenus {
 public:
  /// The menus below a program's menu bar.
  explicit ProgramMenus(platform::ElementRef menuBar);

  /// Why the runner would not find the item with this path, and the titles that exist instead; none when it
  /// would find it.
  std::optional<std::string> missing(const std::vector<std::string>& path);

  /// The titles of the menu bar.
  std::vector<std::string> titles();

  /// Whether any item shows its shortcut.
  bool showShortcuts();

  /// The path of the item that shows this keystroke as its shortcut; none when no item does.
  std::optional<std::vector<std::string>> itemWith(const action::Keystroke& keystroke);

 private:
  /// A key code and modifier flags.
  using Shortcut = std::pair<std::uint16_t, std::uint64_t>;

  const std::map<Shortcut, std::vector<std::string>>& shortcuts();
  void collect(platform::Element& element, const std::vector<std::string>& path, std::size_t levels);

  platform::ElementRef menuBar_;
  std::optional<std::map<Shortcut, std::vector<std::string>>> shortcuts_;
};

}  // namespace keyvora::tools
