#pragma once

#include <string_view>
#include <variant>

#include "json/tree.h"
#include "mapping/decoding_error.h"
#include "mapping/mapping.h"

namespace keyvora {

/// Decodes a whole document: the mapping, or the first fault in the order of reading. Any thread; never
/// throws.
std::variant<Mapping, DecodingError> decode(std::string_view bytes);

/// Receives what a decoder finds.
class DecodeSink {
 public:
  virtual ~DecodeSink() = default;

  /// Something is wrong. True to continue without the faulty part.
  virtual bool fault(DecodingError error) = 0;

  /// A sequence was decoded from this object of the tree. Called in document order.
  virtual void sequence(const Sequence& sequence, const json::Value& source) {
    static_cast<void>(sequence);
    static_cast<void>(source);
  }
};

/// Decodes a tree in one pass, in the order of reading: version, notes, timeoutMilliseconds, tabs,
/// sequences; in a sequence keys, name, action; in an action kind, then the keys of that kind. Without a
/// fault the result is the whole document, otherwise the parts without one. Unknown keys are ignored.
Mapping decode(const json::Tree& tree, DecodeSink& sink);

}  // namespace keyvora
