#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>

#include "json/tree.h"

/// What has come with the program, now and before.
namespace keyvora::tools {

/// A document that comes with the program.
struct ShippedDocument {
  /// calc, gnumeric or excel.
  std::string_view name;
  std::string_view bytes;
};

std::span<const ShippedDocument> shippedDocuments();

/// The one with this name; null when there is none.
const ShippedDocument* shippedDocument(std::string_view name);

/// A number for a value of a document, in hexadecimal: the same for values that differ only in layout, in
/// escapes and in the order of their members. scripts/shipped computes it too.
std::string fingerprint(const json::Value& value);

/// Every entry that ever came with one document, by its fingerprint: in which edition it first came.
using ShippedEntries = std::map<std::string, int, std::less<>>;

/// The entries of resources/shipped.txt that belong to the document with this name.
ShippedEntries everShipped(std::string_view documentName);

}  // namespace keyvora::tools
