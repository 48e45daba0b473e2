#pragma once

#include <string>
#include <vector>

#include "platform/applications.h"

namespace keyvora::x11 {

/// Brings the items of a menu up to date, where the application only does so when the menu opens
/// (LibreOffice): goes through the menus that it exports beside its windows (org.gtk.Menus on the session
/// bus) as a global menu bar does, and tells it that each menu on the way opens and closes. Nothing is shown.
///
/// `menus` are titles from the menu bar down, without the item itself. False when no window of the process
/// exports such menus. A bus call may take a fifth of a second; the first that fails ends it. Main thread.
bool refreshMenus(platform::ProcessIdentifier process, const std::vector<std::string>& menus);

}  // namespace keyvora::x11
