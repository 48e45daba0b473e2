#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <variant>

namespace keyvora::tools {

/// A document's bytes, and its name in messages.
struct Source {
  std::string name;
  std::string bytes;
};

/// Why a file could not be read, for the user: "name: reason".
struct Unreadable {
  std::string message;
};

/// The path of the user's own document, which need not exist; none for a user without a home directory.
std::optional<std::filesystem::path> userDocument();

/// The path of keyvora's log, which need not exist; none for a user without a home directory.
std::optional<std::filesystem::path> userLog();

/// The path of the user's own document, if it exists.
std::optional<std::string> ownDocumentThatExists();

/// Reads a whole file; `-` is standard input.
std::variant<Source, Unreadable> readFile(const std::string& file);

/// Makes a new folder, for the user alone, where temporary files go (TMPDIR, or /tmp); its name begins with
/// `name`. None when that is not possible.
std::optional<std::filesystem::path> makeTemporaryFolder(const std::string& name);

}  // namespace keyvora::tools
