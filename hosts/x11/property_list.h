#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace keyvora::x11 {

/// A scalar of a property list.
using PropertyValue = std::variant<std::string, bool, std::int64_t>;

/// The scalars of an information dictionary by their keys.
using PropertyList = std::map<std::string, PropertyValue, std::less<>>;

/// Reads an XML property list whose root is a dictionary. Values other than text, booleans and integers are
/// ignored. None when there is no such file or it is malformed.
std::optional<PropertyList> readPropertyList(const std::filesystem::path& file);

/// The value of a key if it exists and has this type.
template <class Value>
std::optional<Value> property(const PropertyList& list, std::string_view key) {
  const auto found = list.find(key);
  if (found == list.end()) return std::nullopt;
  const auto* value = std::get_if<Value>(&found->second);
  return value != nullptr ? std::optional(*value) : std::nullopt;
}

}  // namespace keyvora::x11
