#pragma once

#include <functional>
#include <memory>
#include <string_view>

#include "platform/menu.h"

namespace keyvora::platform {

/// An item in the system's status bar. Main thread. Destroying it takes it away.
class StatusItem {
 public:
  virtual ~StatusItem() = default;

  /// Whether the item has a button that can show a title.
  [[nodiscard]] virtual bool hasButton() const = 0;

  /// Shows the title (UTF-8). The same title again costs nothing.
  virtual void setTitle(std::string_view title) = 0;

  /// Replaces the menu that opens from the item.
  virtual void setMenu(Menu menu) = 0;
};

/// The system's status bar. Main thread.
class StatusBar {
 public:
  virtual ~StatusBar() = default;

  /// A new item as wide as its title; never null. Where no status bar exists, the item shows when one
  /// appears.
  virtual std::unique_ptr<StatusItem> createItem() = 0;

  /// Hears once, with a line for the log, that the desktop has nothing to show an item in, and what to do
  /// about it. Set before an item is made. Empty: nobody is told.
  std::function<void(std::string_view line)> onUnseen;
};

}  // namespace keyvora::platform
