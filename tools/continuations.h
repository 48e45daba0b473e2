#pragma once

#include <span>
#include <string>
#include <vector>

#include "mapping/mapping.h"

namespace keyvora::tools {

/// What one more letter leads to.
struct Continuation {
  std::string letter;
  /// The sequences that start with the letters typed and this one, in document order; of those with the same
  /// letters the one that fires. They live as long as the mapping.
  std::vector<const Sequence*> sequences;
};

/// What letters that were typed may still become, by the next letter, in the order in which it first comes up
/// in the document. Sequences that the letters complete are not among them.
std::vector<Continuation> continuationsOf(std::span<const std::string> typed, const Mapping& mapping);

/// How many sequences there are in all of them.
std::size_t sequencesIn(const std::vector<Continuation>& continuations);

/// A line for each: the letters that are left and the sequence's name, or the names of several in a row.
std::vector<std::string> asLines(const std::vector<Continuation>& continuations, std::size_t lettersTyped);

}  // namespace keyvora::tools
