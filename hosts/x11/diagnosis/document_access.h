#pragma once

#include <filesystem>
#include <optional>

#include "platform/diagnosis.h"

namespace keyvora::x11 {

/// A finding when other users than the administrator may write the mapping document or replace it; none
/// when they may not, or when it does not exist.
std::optional<platform::Finding> foreignDocument(const std::filesystem::path& document);

}  // namespace keyvora::x11
