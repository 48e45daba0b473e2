#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>

#include "json/tree.h"

/// The documents shipped with the program, now and before.
namespace keyvora::tools {

/// A document shipped with the program.
struct ShippedDocument {
  /// calc, gnumeric or excel.
  std::string_view name;
  std::string_view bytes;
};

std::span<const ShippedDocument> shippedDocuments();

/// The document with this name; null when there is none.
const ShippedDocument* shippedDocument(std::string_view name);

/// A hash of a value, in hexadecimal: equal for values that differ only in layout, escapes or the order of
/// members. scripts/shipped computes the same.
std::string fingerprint(const json::Value& value);

/// Every entry ever shipped in one document: by fingerprint, the edition in which it first appeared.
using ShippedEntries = std::map<std::string, int, std::less<>>;

/// The entries of resources/shipped.txt for the document with this name.
ShippedEntries everShipped(std::string_view documentName);

/// By the keys of a sequence: the edition in which a document with this name first had one with them.
std::map<std::string, int, std::less<>> firstEditions(std::string_view documentName);

}  // namespace keyvora::tools
