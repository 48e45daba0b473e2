#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>

namespace keyvora::x11 {

/// The text values of an information dictionary by their keys.
using PropertyList = std::map<std::string, std::string, std::less<>>;

/// Reads an XML property list whose top is a dictionary; values that are no text are passed over. None when
/// there is no such file or it is malformed.
std::optional<PropertyList> readPropertyList(const std::filesystem::path& file);

}  // namespace keyvora::x11
