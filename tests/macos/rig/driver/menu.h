#pragma once

#include <string>

namespace keyvora::rig {

/// The status item's title; "no item" while there is none.
std::string titleText();

/// The rows of the status item's menu, apart by tabs: "-" for a separator; a check mark, the key and greyness
/// are told.
std::string rowsText();

/// Chooses the row of this title, as AppKit does: the menu is kept meanwhile. Answers "done", or why it
/// cannot be chosen.
std::string choose(const std::string& title);

}  // namespace keyvora::rig
