#pragma once

#include <string>
#include <string_view>

namespace keyvora::appcast {

/// Release notes in HTML as plain text: blocks on lines of their own, list items with a bullet, scripts and
/// styles left out, white space collapsed. Never fails: what is not understood is left out. Any thread.
std::string plainNotes(std::string_view html);

}  // namespace keyvora::appcast
