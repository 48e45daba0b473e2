#pragma once

#include <string_view>

namespace keyvora::x11 {

/// The installed spreadsheet, by the name of its document without the extension: "calc" or "gnumeric".
/// Recognised by its desktop file in the directories of XDG_DATA_DIRS, in all packagings. Calc comes first
/// and is the default when neither is installed. Reads directories: milliseconds.
std::string_view installedSpreadsheet();

}  // namespace keyvora::x11
