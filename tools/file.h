#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <variant>

namespace keyvora::tools {

/// A document's bytes and what messages call it.
struct Source {
  std::string name;
  std::string bytes;
};

/// Why a file could not be read, for a person: "name: reason".
struct Unreadable {
  std::string message;
};

/// Where the user's own document is, whether it exists or not; none for a user without a home directory.
std::optional<std::filesystem::path> userDocument();

/// Where keyvora's log is, whether it exists or not; none for a user without a home directory.
std::optional<std::filesystem::path> userLog();

/// The user's own document, if it exists.
std::optional<std::string> ownDocumentThatExists();

/// Reads a file whole; `-` is the standard input.
std::variant<Source, Unreadable> readFile(const std::string& file);

}  // namespace keyvora::tools
