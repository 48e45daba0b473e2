#pragma once

#include <string_view>

namespace keyvora::x11 {

/// The bundle identifier that the windows of an application stand in for here, by the two parts of their
/// WM_CLASS; empty for an application that stands in for none. The view is good for ever.
std::string_view bundleIdentifierOf(std::string_view instanceName, std::string_view className);

/// Whether a window with this WM_CLASS may come to have another one: those without a class may, and those of
/// LibreOffice, which shows one document after another in the same window.
bool mayBecomeAnother(std::string_view instanceName, std::string_view className);

/// Whether a window with this WM_CLASS gives the keys that are sent to it to another document, the one of its
/// process that was in front last: so does LibreOffice.
bool sharesKeys(std::string_view instanceName, std::string_view className);

}  // namespace keyvora::x11
