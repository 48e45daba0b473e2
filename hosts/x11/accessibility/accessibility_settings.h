#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace keyvora::x11 {

/// The address of the settings that grant a program the use of the accessibility interface.
inline constexpr std::string_view accessibilitySettingsAddress =
    "x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility";

/// The command that shows the accessibility settings on this desktop: that of the desktop which runs (as
/// XDG_CURRENT_DESKTOP names it, in `currentDesktop`) if it is installed, else of any that is. None when
/// there is no such program on PATH.
std::optional<std::vector<std::string>> accessibilitySettingsCommand(std::string_view currentDesktop);

}  // namespace keyvora::x11
