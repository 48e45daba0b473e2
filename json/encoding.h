#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace keyvora::json {

/// A document as UTF-8 without a byte-order mark.
struct Utf8Document {
  /// The document's own bytes when they are UTF-8 already; empty when they were converted.
  std::string_view bytes;
  std::string converted;
  /// The offset of the first ill-formed part; the text may end there.
  std::optional<std::size_t> fault;
};

/// Detects a document's encoding by its byte-order mark or by the zeros among its first bytes, and converts
/// it to UTF-8. FF FE always means UTF-16: like the platform's decoder, this detects little-endian UTF-32
/// by its zeros only.
Utf8Document utf8Document(std::string_view bytes);

}  // namespace keyvora::json
