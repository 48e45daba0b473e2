#pragma once

#import <AppKit/AppKit.h>

#include "platform/status_bar.h"

namespace keyvora::macos {

/// One item of the menu bar; its destructor removes it. Main thread.
class StatusItem final : public platform::StatusItem {
 public:
  explicit StatusItem(NSStatusItem* item) : item_(item) {}
  ~StatusItem() override;
  StatusItem(const StatusItem&) = delete;
  StatusItem& operator=(const StatusItem&) = delete;

  [[nodiscard]] bool hasButton() const override;
  void setTitle(std::string_view title) override;
  void setMenu(platform::Menu menu) override;

  [[nodiscard]] NSStatusItem* get() const { return item_; }

 private:
  NSStatusItem* item_;
};

/// The menu bar's status items. Main thread.
class StatusBar final : public platform::StatusBar {
 public:
  std::unique_ptr<platform::StatusItem> createItem() override;
};

}  // namespace keyvora::macos
