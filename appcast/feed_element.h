#pragma once

#include <pugixml.hpp>

#include <span>
#include <string>
#include <string_view>

/// Elements and attributes of a feed, with the namespace of Sparkle's additions. Any thread.
namespace keyvora::appcast {

/// The attribute in Sparkle's namespace with this local name; null when there is none.
pugi::xml_attribute sparkleAttribute(const pugi::xml_node& element, std::string_view name);

/// The child element with this name, in Sparkle's namespace or in none; null when there is none. Of
/// several, the one whose xml:lang comes first in `languages`, else one without a language, else the first.
pugi::xml_node sparkleChild(const pugi::xml_node& element, std::string_view name,
                            std::span<const std::string> languages);
pugi::xml_node plainChild(const pugi::xml_node& element, std::string_view name,
                          std::span<const std::string> languages);

/// All text in the element, trimmed; empty for a null element.
std::string text(const pugi::xml_node& element);

/// Without white space at both ends.
std::string trimmed(std::string_view text);

}  // namespace keyvora::appcast
