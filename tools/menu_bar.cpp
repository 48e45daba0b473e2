#include "tools/menu_bar.h"

#include <algorithm>
#include <span>
#include <string>
#include <variant>
#include <vector>

namespace keyvora::tools {
namespace {

/// A menu, or the menu bar, with the items on the paths.
struct MenuTree {
  std::string title;
  std::string path;
  std::vector<MenuTree> items;

  void add(std::span<const std::string> titles) {
    if (titles.empty()) return;
    auto item = std::ranges::find(items, titles.front(), &MenuTree::title);
    if (item == items.end())
      item = items.insert(items.end(), {titles.front(), path + "/" + titles.front(), {}});
    item->add(titles.subspan(1));
  }

  [[nodiscard]] simulated::TreeElementRef element(simulated::Accessibility& accessibility) const {
    std::vector<simulated::TreeElementRef> children;
    for (const auto& item : items) children.push_back(item.element(accessibility));
    auto made = accessibility.element(title, children);
    made->identifier = path;
    return made;
  }
};

}  // namespace

simulated::TreeElementRef menuBarFor(const Mapping& mapping, simulated::Accessibility& accessibility) {
  MenuTree bar;
  for (const auto& sequence : mapping.sequences) {
    if (const auto* menu = std::get_if<action::Menu>(&sequence.action)) bar.add(menu->path);
  }
  return bar.element(accessibility);
}

}  // namespace keyvora::tools
