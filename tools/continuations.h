#pragma once

#include <span>
#include <string>
#include <vector>

#include "mapping/mapping.h"

namespace keyvora::tools {

/// The result of typing one more letter.
struct Continuation {
  std::string letter;
  /// The sequences that start with the typed letters and this one, in document order; of several with the
  /// same letters only the one that fires. Valid as long as the mapping.
  std::vector<const Sequence*> sequences;
};

/// The possible continuations of typed letters, by the next letter, in the order of its first occurrence in
/// the document. Sequences that the typed letters complete are not included.
std::vector<Continuation> continuationsOf(std::span<const std::string> typed, const Mapping& mapping);

/// The number of sequences in all of them.
std::size_t sequencesIn(const std::vector<Continuation>& continuations);

/// A line for each: the remaining letters and the sequence's name, or several names in a row.
std::vector<std::string> asLines(const std::vector<Continuation>& continuations, std::size_t lettersTyped);

}  // namespace keyvora::tools
