#pragma once

#include <string>

namespace keyvora::rig {

/// The status item's title; "no item" without one.
std::string titleText();

/// The rows of the status item's menu, separated by tabs: "-" for a separator; with check mark, key and
/// disabled state.
std::string rowsText();

/// Chooses the row with this title, as AppKit does: the menu is retained meanwhile. Returns "done", or why
/// it cannot be chosen.
std::string choose(const std::string& title);

}  // namespace keyvora::rig
