#pragma once

#include <optional>
#include <span>
#include <string_view>

namespace keyvora::tools {

/// The candidate that was most likely meant by `word`: equal except for case and surrounding blanks, or one
/// or two edits away. None when no candidate is similar. Of equally similar ones, the first.
std::optional<std::string_view> nearest(std::string_view word, std::span<const std::string_view> candidates);

/// The text without blanks, tabs and line breaks at both ends.
std::string_view trimmed(std::string_view text);

}  // namespace keyvora::tools
