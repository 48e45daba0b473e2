#include "hosts/x11/status/status_bar.h"

#include "hosts/x11/status/status_item.h"
#include "hosts/x11/toolkit.h"

namespace keyvora::x11 {
namespace {

/// The item of a program that runs where there is no display to show it on.
class UnseenItem final : public platform::StatusItem {
 public:
  [[nodiscard]] bool hasButton() const override { return false; }
  void setTitle(std::string_view) override {}
  void setMenu(platform::Menu) override {}
};

}  // namespace

std::unique_ptr<platform::StatusItem> StatusBar::createItem() {
  if (!hasDisplay()) return std::make_unique<UnseenItem>();
  auto item = std::make_unique<StatusItem>(loop_);
  if (!item->hasTray()) {
    notices_.say(
        "There is no system tray: key sequences work, but their letters and the menu show only once a "
        "tray has started. SIGTERM ends keyvora.");
  }
  return item;
}

}  // namespace keyvora::x11
