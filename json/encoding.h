#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace keyvora::json {

/// A document as UTF-8 without a byte-order mark.
struct Utf8Document {
  /// The document's own bytes when they are UTF-8 already; empty when they had to be converted.
  std::string_view bytes;
  std::string converted;
  /// Where in the text the first ill-formed part stands; the text may end there.
  std::optional<std::size_t> fault;
};

/// Finds out how a document is encoded, by its byte-order mark or by where its first bytes are zero, and
/// gives it as UTF-8. A document that starts with FF FE is UTF-16: the platform's decoder knows no
/// little-endian UTF-32 but by its zeros.
Utf8Document utf8Document(std::string_view bytes);

}  // namespace keyvora::json
