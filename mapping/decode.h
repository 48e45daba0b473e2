#pragma once

#include <string_view>
#include <variant>

#include "json/tree.h"
#include "mapping/decoding_error.h"
#include "mapping/mapping.h"

namespace keyvora {

/// Decodes a document's bytes whole: the mapping, or the first thing that is wrong in the order of reading.
/// Any thread; never throws.
std::variant<Mapping, DecodingError> decode(std::string_view bytes);

/// Hears what a decoder finds.
class DecodeSink {
 public:
  virtual ~DecodeSink() = default;

  /// Something is wrong. True to go on with what follows and leave the faulty part out.
  virtual bool fault(DecodingError error) = 0;

  /// A sequence was decoded whole, from this object of the tree. Called in document order.
  virtual void sequence(const Sequence& sequence, const json::Value& source) {
    static_cast<void>(sequence);
    static_cast<void>(source);
  }
};

/// Decodes a tree in one pass, in the order of reading: version, notes, timeoutMilliseconds, tabs, sequences;
/// in a sequence keys, name, action; in an action kind, then what the kind reads. The result is the document
/// when the sink heard of no fault, else what could be made of it. What no key names is not looked at.
Mapping decode(const json::Tree& tree, DecodeSink& sink);

}  // namespace keyvora
