#pragma once

#include <functional>
#include <memory>
#include <string_view>

#include "platform/menu.h"

namespace keyvora::platform {

/// An item in the system's status bar. Main thread. Destroying it removes the item.
class StatusItem {
 public:
  virtual ~StatusItem() = default;

  /// Whether the item has a button that can show a title.
  [[nodiscard]] virtual bool hasButton() const = 0;

  /// Shows the title (UTF-8). Setting the same title again costs nothing.
  virtual void setTitle(std::string_view title) = 0;

  /// Replaces the menu that opens from the item.
  virtual void setMenu(Menu menu) = 0;
};

/// The system's status bar. Main thread.
class StatusBar {
 public:
  virtual ~StatusBar() = default;

  /// A new item as wide as its title; never null. Without a status bar, the item appears when one starts.
  virtual std::unique_ptr<StatusItem> createItem() = 0;

  /// Called once, with a line for the log, when the desktop has no place for the item; the line says what
  /// to do about it. Set it before an item is made. May be empty.
  std::function<void(std::string_view line)> onUnseen;
};

}  // namespace keyvora::platform
