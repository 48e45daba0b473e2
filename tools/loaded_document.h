#pragma once

#include <memory>
#include <optional>
#include <string>
#include <variant>

#include "tools/command.h"
#include "tools/document.h"
#include "tools/file.h"

namespace keyvora::tools {

/// Reads the named file. Without a name, reads the user's own document or, if it does not exist yet, the one
/// that keyvora would copy, and reports that on the error stream.
std::variant<Source, Unreadable> readDocument(const std::optional<std::string>& file, const Streams& streams);

/// A document that loads, and its name in messages.
struct LoadedDocument {
  std::string name;
  std::unique_ptr<const Document> document;
};

/// Like `readDocument`, but decodes it; none, after reporting why, if it cannot be read or does not load.
std::optional<LoadedDocument> loadDocument(const std::optional<std::string>& file, const Streams& streams);

}  // namespace keyvora::tools
