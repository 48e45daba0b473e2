#pragma once

#include <string>
#include <vector>

#include "platform/applications.h"

namespace keyvora::x11 {

/// Updates the items of a menu in applications that do so only when the menu opens (LibreOffice). Walks the
/// menus that the application exports with its windows (org.gtk.Menus on the session bus) as a global menu
/// bar does, and reports each menu on the path as opened and closed. Nothing appears on the screen.
///
/// `menus` are titles from the menu bar down, without the item itself. False when no window of the process
/// exports such menus. A bus call may take at most a fifth of a second; the first failure ends the walk.
/// Main thread.
bool refreshMenus(platform::ProcessIdentifier process, const std::vector<std::string>& menus);

}  // namespace keyvora::x11
