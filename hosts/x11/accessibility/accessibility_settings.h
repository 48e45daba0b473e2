#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace keyvora::x11 {

/// The address of the settings that grant a program the use of the accessibility interface.
inline constexpr std::string_view accessibilitySettingsAddress =
    "x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility";

/// The command that opens the accessibility settings: that of the running desktop (`currentDesktop` is the
/// value of XDG_CURRENT_DESKTOP) if it is installed, else any installed one. None when no such program is
/// on PATH.
std::optional<std::vector<std::string>> accessibilitySettingsCommand(std::string_view currentDesktop);

}  // namespace keyvora::x11
