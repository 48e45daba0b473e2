#include "hosts/x11/accessibility/menu_bar_search.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace keyvora::x11 {
namespace {

/// The depth limit of the search: menu bars are far above it.
constexpr int deepest = 32;
constexpr int mostVisited = 2000;
constexpr int mostChildren = 200;

/// Whether the element can contain a menu bar. A spreadsheet's table, for example, has far too many cells
/// to visit.
bool canHoldMenuBar(AtspiRole role) {
  switch (role) {
    case ATSPI_ROLE_TABLE:
    case ATSPI_ROLE_TREE:
    case ATSPI_ROLE_TREE_TABLE:
    case ATSPI_ROLE_LIST:
    case ATSPI_ROLE_LIST_BOX:
    case ATSPI_ROLE_MENU:
    case ATSPI_ROLE_POPUP_MENU:
    case ATSPI_ROLE_TOOL_BAR:
    case ATSPI_ROLE_TERMINAL:
    case ATSPI_ROLE_TEXT:
    case ATSPI_ROLE_DOCUMENT_FRAME:
    case ATSPI_ROLE_DOCUMENT_SPREADSHEET:
    case ATSPI_ROLE_DOCUMENT_TEXT:
    case ATSPI_ROLE_DOCUMENT_WEB:
      return false;
    default:
      return true;
  }
}

class Search {
 public:
  explicit Search(AccessibilityCalls& calls) : calls_(calls) {}

  Accessible below(const Accessible& accessible, int depth = 0) {
    const int count = std::min(calls_.childCount(accessible).value_or(0), mostChildren);
    for (int index = 0; index < count && ++visited_ <= mostVisited && !calls_.gaveUp(); ++index) {
      auto child = calls_.child(accessible, index);
      if (!child) continue;
      const auto role = calls_.role(child);
      if (!role) continue;
      if (*role == ATSPI_ROLE_MENU_BAR) return child;
      if (depth >= deepest || !canHoldMenuBar(*role)) continue;
      if (auto found = below(child, depth + 1)) return found;
    }
    return nullptr;
  }

 private:
  AccessibilityCalls& calls_;
  int visited_ = 0;
};

Accessible findApplication(AccessibilityCalls& calls, platform::ProcessIdentifier process) {
  const auto desktop = calls.desktop();
  if (!desktop) return nullptr;
  const int count = calls.childCount(desktop).value_or(0);
  for (int index = 0; index < count; ++index) {
    auto application = calls.child(desktop, index);
    if (application && calls.process(application) == static_cast<unsigned>(process)) return application;
  }
  return nullptr;
}

/// The frame of a document among its application's windows.
Accessible findFrame(AccessibilityCalls& calls, const Accessible& application,
                     const DocumentFrame& document) {
  std::vector<Accessible> frames;
  const int count = std::min(calls.childCount(application).value_or(0), mostChildren);
  for (int index = 0; index < count; ++index) {
    auto frame = calls.child(application, index);
    if (frame && calls.name(frame) == document.title) frames.push_back(std::move(frame));
  }
  if (frames.size() > 1) {
    std::erase_if(frames,
                  [&](const Accessible& frame) { return !document.isActive || !calls.isActive(frame); });
  }
  return frames.size() == 1 ? std::move(frames.front()) : nullptr;
}

}  // namespace

Accessible findMenuBarOf(AccessibilityCalls& calls, const DocumentFrame& document) {
  const auto application = findApplication(calls, document.process);
  if (!application) return nullptr;
  const auto frame = findFrame(calls, application, document);
  return frame ? Search(calls).below(frame) : nullptr;
}

Accessible findMenuBar(AccessibilityCalls& calls, platform::ProcessIdentifier process) {
  const auto application = findApplication(calls, process);
  if (!application) return nullptr;
  return Search(calls).below(application);
}

}  // namespace keyvora::x11
