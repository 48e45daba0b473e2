#pragma once

#include <memory>
#include <optional>
#include <string>
#include <variant>

#include "tools/command.h"
#include "tools/document.h"
#include "tools/file.h"

namespace keyvora::tools {

/// Reads the named file; without a name the user's own document, and where that does not exist yet, the one
/// that keyvora would put there, which is said on the error stream.
std::variant<Source, Unreadable> readDocument(const std::optional<std::string>& file, const Streams& streams);

/// A document that loads, and what messages call it.
struct LoadedDocument {
  std::string name;
  std::unique_ptr<const Document> document;
};

/// Reads a document as `readDocument` does; none, after saying why, when it cannot be read or does not load.
std::optional<LoadedDocument> loadDocument(const std::optional<std::string>& file, const Streams& streams);

}  // namespace keyvora::tools
