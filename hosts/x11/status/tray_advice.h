#pragma once

#include <string>
#include <string_view>

namespace keyvora::x11 {

/// The log line for a desktop that shows no status items: that there is no tray, and what to install or
/// enable. `currentDesktop` is the value of XDG_CURRENT_DESKTOP.
std::string noTrayAdvice(std::string_view currentDesktop);

}  // namespace keyvora::x11
