#include "hosts/x11/status/status_bar.h"

#include <cstdlib>

#include "hosts/x11/status/status_item.h"
#include "hosts/x11/status/tray_advice.h"
#include "hosts/x11/toolkit.h"

namespace keyvora::x11 {
namespace {

/// The item of a program without a display.
class UnseenItem final : public platform::StatusItem {
 public:
  [[nodiscard]] bool hasButton() const override { return false; }
  void setTitle(std::string_view) override {}
  void setMenu(platform::Menu) override {}
};

}  // namespace

std::unique_ptr<platform::StatusItem> StatusBar::createItem() {
  if (!hasDisplay()) return std::make_unique<UnseenItem>();
  return std::make_unique<StatusItem>(loop_, patience_, [this] {
    const char* desktop = std::getenv("XDG_CURRENT_DESKTOP");
    if (onUnseen) onUnseen(noTrayAdvice(desktop == nullptr ? "" : desktop));
  });
}

}  // namespace keyvora::x11
