#pragma once

#include <string_view>

namespace keyvora::x11 {

/// The spreadsheet that is installed here, by the name of its document without the extension: "calc" or
/// "gnumeric". Found by its desktop file in the directories of XDG_DATA_DIRS, whoever packaged it; Calc comes
/// first, and is the default where neither is installed. Reads directories: milliseconds.
std::string_view installedSpreadsheet();

}  // namespace keyvora::x11
