#include "hosts/x11/accessibility/element.h"

#include <atspi/atspi.h>

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

#include "hosts/x11/accessibility/accessibility_calls.h"
#include "hosts/x11/accessibility/earlier_input.h"
#include "hosts/x11/accessibility/exported_menus.h"
#include "hosts/x11/accessibility/menu_bar_search.h"
#include "hosts/x11/accessibility/shown_shortcut.h"
#include "hosts/x11/keyboard/current_tap.h"

namespace keyvora::x11 {
namespace {

using platform::AttributeAnswer;
using platform::ElementRef;

/// Error codes, as in AXError.h.
namespace ax_error {
constexpr std::int32_t cannotComplete = -25204;
constexpr std::int32_t attributeUnsupported = -25205;
constexpr std::int32_t actionUnsupported = -25206;
}  // namespace ax_error

constexpr int mostChildren = 1000;
constexpr int deepestMenu = 16;

/// A menu bar or an element inside one.
class MenuElement final : public platform::Element {
 public:
  MenuElement(std::shared_ptr<AccessibilityCalls> calls, Accessible accessible, CurrentTap& tap)
      : calls_(std::move(calls)), accessible_(std::move(accessible)), tap_(tap) {}

  AttributeAnswer attribute(std::string_view name) override {
    if (name == "AXChildren") return children();
    if (name == "AXTitle") return title();
    if (name == "AXKeyShortcutsValue") return shortcut();
    return {ax_error::attributeUnsupported, {}};
  }

  std::int32_t perform(std::string_view action) override {
    if (action != "AXPress") return ax_error::actionUnsupported;
    return press(tap_.letGo());
  }

 private:
  AttributeAnswer children() {
    const auto count = calls_->childCount(accessible_);
    if (!count) return {ax_error::cannotComplete, {}};
    std::vector<ElementRef> children;
    for (int index = 0; index < std::min(*count, mostChildren); ++index) {
      auto child = calls_->child(accessible_, index);
      if (calls_->gaveUp()) return {ax_error::cannotComplete, {}};
      if (child) children.push_back(std::make_shared<MenuElement>(calls_, std::move(child), tap_));
    }
    return {0, std::move(children)};
  }

  AttributeAnswer title() {
    auto name = calls_->name(accessible_);
    if (!name) return {ax_error::cannotComplete, {}};
    if (name->empty()) return {};
    return {0, std::move(*name)};
  }

  AttributeAnswer shortcut() {
    const auto binding = calls_->keyBinding(accessible_);
    auto shown = binding ? shortcutIn(*binding) : std::nullopt;
    if (!shown) return {};
    return {0, std::move(*shown)};
  }

  std::int32_t press(KeyboardIsFree free) {
    const auto nested = isNestedSubmenu();
    if (!nested) return ax_error::cannotComplete;
    if (*nested) return ax_error::actionUnsupported;
    if (calls_->press(accessible_, free)) return 0;
    // LibreOffice may show the item as disabled because its menu has not been opened since its state
    // changed.
    if (calls_->gaveUp() || !refresh()) return ax_error::cannotComplete;
    return calls_->press(accessible_, free) ? 0 : ax_error::cannotComplete;
  }

  /// Updates the menus on the path to this item; false for applications whose menus are always up to date.
  bool refresh() {
    std::vector<std::string> titles;
    auto menu = calls_->parent(accessible_);
    for (int depth = 0; menu && depth < deepestMenu; ++depth) {
      if (calls_->role(menu) == ATSPI_ROLE_MENU_BAR) break;
      titles.insert(titles.begin(), calls_->name(menu).value_or(""));
      menu = calls_->parent(menu);
    }
    const auto process = calls_->process(accessible_);
    return process && refreshMenus(static_cast<platform::ProcessIdentifier>(*process), titles);
  }

  /// Whether this is a submenu inside a menu. Pressing such an item in GTK opens the submenu without the
  /// state needed to close it again, and the application would lose the keyboard.
  std::optional<bool> isNestedSubmenu() {
    const auto role = calls_->role(accessible_);
    const auto count = calls_->childCount(accessible_);
    const auto parent = calls_->parent(accessible_);
    if (!role || !count || !parent) return std::nullopt;
    if (*role == ATSPI_ROLE_MENU_BAR) return false;
    const auto parentRole = calls_->role(parent);
    if (!parentRole) return std::nullopt;
    return (*role == ATSPI_ROLE_MENU || *count > 0) && *parentRole != ATSPI_ROLE_MENU_BAR;
  }

  std::shared_ptr<AccessibilityCalls> calls_;
  Accessible accessible_;
  CurrentTap& tap_;
};

class ApplicationElement final : public platform::Element {
 public:
  ApplicationElement(platform::ProcessIdentifier process, Applications& applications, CurrentTap& tap)
      : process_(process), applications_(applications), tap_(tap) {}

  AttributeAnswer attribute(std::string_view name) override {
    if (name != "AXMenuBar") return {ax_error::attributeUnsupported, {}};
    auto menuBar = handledEarlierInput() ? findMenuBar() : nullptr;
    if (!menuBar) return {ax_error::cannotComplete, {}};
    return {0, ElementRef(std::make_shared<MenuElement>(calls_, std::move(menuBar), tap_))};
  }

  std::int32_t perform(std::string_view) override { return ax_error::actionUnsupported; }

 private:
  /// Menus are read and pressed as they are after the keys typed before the sequence: those selected cells.
  bool handledEarlierInput() {
    return awaitEarlierInput(applications_.targetWindow(), AccessibilityCalls::limit, tap_.letGo());
  }

  Accessible findMenuBar() {
    if (!applications_.hasDocument()) return x11::findMenuBar(*calls_, process_);
    // A title that changes during the search may have been read before the change on one side: search once
    // more.
    for (int attempt = 0; attempt < 2; ++attempt) {
      const auto frame = applications_.documentFrame();
      if (!frame || frame->process != process_) return nullptr;
      if (auto menuBar = findMenuBarOf(*calls_, *frame)) return menuBar;
    }
    return nullptr;
  }

  platform::ProcessIdentifier process_;
  Applications& applications_;
  CurrentTap& tap_;
  std::shared_ptr<AccessibilityCalls> calls_ = std::make_shared<AccessibilityCalls>();
};

}  // namespace

ElementRef applicationElement(platform::ProcessIdentifier process, Applications& applications,
                              CurrentTap& tap) {
  return std::make_shared<ApplicationElement>(process, applications, tap);
}

}  // namespace keyvora::x11
