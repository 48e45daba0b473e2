#pragma once

#include <memory>
#include <string>

#include "hosts/simulated/world.h"
#include "platform/status_bar.h"

namespace keyvora::simulated {

/// The status bar as its user sees it. Shows the newest item. Main thread.
class StatusBar final : public platform::StatusBar {
 public:
  explicit StatusBar(World& world);
  ~StatusBar() override;

  /// Whether items that are made from now on have a button.
  bool givesButton = true;

  /// Whether an item is there.
  [[nodiscard]] bool hasItem() const { return shown_->present; }

  /// The title that the item shows.
  [[nodiscard]] const std::string& title() const { return shown_->title; }

  /// The menu that opens from the item.
  [[nodiscard]] const platform::Menu& menu() const { return shown_->menu; }

  /// The user opens the menu and chooses the row with this title. Fatal when no enabled row has it.
  void choose(std::string_view title);

  /// The user opens the menu and presses Command with this letter; false when no enabled row has it.
  bool pressKey(char letter);

  std::unique_ptr<platform::StatusItem> createItem() override;

 private:
  struct Shown {
    bool present = false;
    std::string title;
    platform::Menu menu;
  };
  class Item;

  World& world_;
  std::shared_ptr<Shown> shown_;
};

}  // namespace keyvora::simulated
