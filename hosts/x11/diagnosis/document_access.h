#pragma once

#include <filesystem>
#include <optional>

#include "platform/diagnosis.h"

namespace keyvora::x11 {

/// That somebody else may write the mapping document, or put another one in its place; none when nobody may,
/// or it is not there. The system's administrator may anyway.
std::optional<platform::Finding> foreignDocument(const std::filesystem::path& document);

}  // namespace keyvora::x11
