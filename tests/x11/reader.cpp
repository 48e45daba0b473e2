#include "tests/x11/reader.h"

#include "tests/x11/private_display.h"

namespace keyvora::x11 {

bool Reader::has(const Accessible& element, AtspiStateType state) {
  const GObjectRef<AtspiStateSet> states(atspi_accessible_get_state_set(element.get()));
  return states && atspi_state_set_contains(states.get(), state);
}

std::optional<AtspiRect> Reader::area(const Accessible& element) {
  const GObjectRef<AtspiComponent> component(atspi_accessible_get_component_iface(element.get()));
  if (!component) return std::nullopt;
  AtspiRect* found = atspi_component_get_extents(component.get(), ATSPI_COORD_TYPE_SCREEN, nullptr);
  if (found == nullptr) return std::nullopt;
  const AtspiRect area = *found;
  g_free(found);
  return area;
}

Accessible Reader::findBelow(const Accessible& element, AtspiRole role, const std::string& name) {
  const int count = calls_.childCount(element).value_or(0);
  for (int index = 0; index < count; ++index) {
    auto child = calls_.child(element, index);
    if (!child) continue;
    if (calls_.role(child) == role && (name.empty() || calls_.name(child) == name)) return child;
    if (auto found = findBelow(child, role, name)) return found;
  }
  return nullptr;
}

Accessible Reader::find(AtspiRole role, const std::string& name) {
  calls_ = {};  // on a busy machine one slow answer would end all later calls
  const auto desktop = calls_.desktop();
  if (!desktop) return nullptr;
  const int count = calls_.childCount(desktop).value_or(0);
  for (int index = 0; index < count; ++index) {
    const auto application = calls_.child(desktop, index);
    if (application && calls_.process(application) == static_cast<unsigned>(pid_)) {
      return findBelow(application, role, name);
    }
  }
  return nullptr;
}

Accessible Reader::await(AtspiRole role, const std::string& name) {
  Accessible found;
  runUntil([&] { return (found = find(role, name)) != nullptr; });
  return found;
}

std::vector<std::string> Reader::rows(const Accessible& menu) {
  std::vector<std::string> rows;
  runUntil([&] {
    calls_ = {};
    rows = readRows(menu);
    return !calls_.gaveUp();
  });
  return rows;
}

std::vector<std::string> Reader::readRows(const Accessible& menu) {
  std::vector<std::string> rows;
  const int count = calls_.childCount(menu).value_or(0);
  for (int index = 0; index < count; ++index) {
    const auto child = calls_.child(menu, index);
    const auto role = calls_.role(child);
    if (role == ATSPI_ROLE_SEPARATOR) {
      rows.emplace_back("separator");
      continue;
    }
    std::string row = role == ATSPI_ROLE_CHECK_MENU_ITEM ? "check: " : "item: ";
    row += calls_.name(child).value_or("unnamed");
    if (!has(child, ATSPI_STATE_SENSITIVE)) row += " (disabled)";
    if (has(child, ATSPI_STATE_CHECKED)) row += " (checked)";
    rows.push_back(row);
  }
  return rows;
}

}  // namespace keyvora::x11
