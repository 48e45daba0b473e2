#pragma once

#include <string_view>

namespace keyvora::x11 {

/// The bundle identifier of the application that these windows replace, by the two parts of their WM_CLASS;
/// empty if they replace none. The view is valid for the life of the program.
std::string_view bundleIdentifierOf(std::string_view instanceName, std::string_view className);

/// Whether a window with this WM_CLASS may get another one: windows without a class may, and those of
/// LibreOffice, which shows different documents in the same window.
bool mayBecomeAnother(std::string_view instanceName, std::string_view className);

/// Whether a window with this WM_CLASS gives the keys that are sent to it to another document, the one of its
/// process that was in front last: so does LibreOffice.
bool sharesKeys(std::string_view instanceName, std::string_view className);

}  // namespace keyvora::x11
