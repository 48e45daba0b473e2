#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "json/tree.h"

namespace keyvora {

/// One step from a document's root to a value: the key of a member or the index of an element.
using PathElement = std::variant<std::string, std::size_t>;
using CodingPath = std::vector<PathElement>;

/// The path on one line, as in `sequences[3].action.kind`, `tabs["a b"]`; empty for the root. Very long
/// keys are cut.
std::string describe(const CodingPath& path);

/// Why a document is not a mapping.
struct DecodingError {
  enum class Kind {
    /// Not JSON, a number that is not a 64-bit integer, an unknown kind of action.
    dataCorrupted,
    /// A required key is missing; the path ends with it.
    keyNotFound,
    /// Null for a required value.
    valueNotFound,
    /// A value of the wrong JSON type.
    typeMismatch,
  };

  Kind kind = Kind::dataCorrupted;
  /// The path to the faulty value.
  CodingPath path;
  /// What is wrong, without the place.
  std::string reason;
  /// One line that says what is wrong and where, complete in itself. An unknown kind of action is the
  /// exception: "unknown action kind " and the kind as written.
  std::string description;
  /// The position of the faulty value, or of the object when a key is missing.
  json::Position position;
};

/// The name of a kind: "dataCorrupted" and so on.
std::string_view nameOf(DecodingError::Kind kind);

/// The error for a document that is not JSON.
DecodingError decodingError(const json::SyntaxError& error);

/// An error whose description is built from its path, reason and position.
DecodingError decodingError(DecodingError::Kind kind, CodingPath path, std::string reason,
                            json::Position position);

/// The error for an action of an unknown kind.
DecodingError unknownKindError(CodingPath path, std::string_view kind, json::Position position);

}  // namespace keyvora
