#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "mapping/json_tree.h"
#include "mapping/mapping.h"

namespace keyvora {

/// One step from a document's root to a value: the key of a member or the index of an element.
using PathElement = std::variant<std::string, std::size_t>;
using CodingPath = std::vector<PathElement>;

/// The path as people write it, on one line: `sequences[3].action.kind`, `tabs["a b"]`; empty for the root.
std::string describe(const CodingPath& path);

/// Why a document is no mapping.
struct DecodingError {
  enum class Kind {
    /// Not JSON at all, a number that is no 64-bit integer, an unknown kind of action.
    dataCorrupted,
    /// A required key is missing; the path ends with it.
    keyNotFound,
    /// Null where a value is required.
    valueNotFound,
    /// A value of another JSON type than the one required.
    typeMismatch,
  };

  Kind kind = Kind::dataCorrupted;
  /// To the value at fault.
  CodingPath path;
  /// What is wrong, without saying where.
  std::string reason;
  /// One line that says what is wrong and where, for a reader who sees nothing else. An unknown kind of
  /// action is the exception: "unknown action kind " and the kind as written, no more.
  std::string description;
  /// Where the value at fault stands (the object, when a key is missing).
  json::Position position;
};

/// The name of a kind: "dataCorrupted" and so on.
std::string_view nameOf(DecodingError::Kind kind);

/// Decodes a document's bytes whole: the mapping, or the first thing that is wrong in the order of reading.
/// Any thread; never throws.
std::variant<Mapping, DecodingError> decode(std::string_view bytes);

/// The error for a document that is not JSON.
DecodingError decodingError(const json::SyntaxError& error);

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
