#pragma once

#include <optional>
#include <span>
#include <string_view>

namespace keyvora::tools {

/// The candidate that someone who wrote `word` most likely meant: the same but for case and blanks around it,
/// or one or two slips away. None when nothing is near. The first of equally near ones.
std::optional<std::string_view> nearest(std::string_view word, std::span<const std::string_view> candidates);

/// Without the blanks, tabs and line breaks at both ends.
std::string_view trimmed(std::string_view text);

}  // namespace keyvora::tools
