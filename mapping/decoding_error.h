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

/// The path as people write it, on one line: `sequences[3].action.kind`, `tabs["a b"]`; empty for the root.
/// Very long keys are cut short.
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

/// The error for a document that is not JSON.
DecodingError decodingError(const json::SyntaxError& error);

/// An error whose description is made of its path, reason and position.
DecodingError decodingError(DecodingError::Kind kind, CodingPath path, std::string reason,
                            json::Position position);

/// The error for an action of a kind that is not known.
DecodingError unknownKindError(CodingPath path, std::string_view kind, json::Position position);

}  // namespace keyvora
