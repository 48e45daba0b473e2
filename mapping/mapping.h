#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "mapping/action.h"

namespace keyvora {

/// One entry of the mapping document.
struct Sequence {
  /// The letters to type after tapping Option, as written.
  std::string keys;
  /// For people to read; with `keys` it is the label of every log line about the action.
  std::string name;
  Action action;

  /// The letters of `keys`: upper-cased, split into user-perceived characters, white space removed.
  /// Computed at each call.
  [[nodiscard]] std::vector<std::string> letters() const;

  friend bool operator==(const Sequence& a, const Sequence& b);
};

/// The result of matching typed letters against a mapping.
struct Match {
  /// The last sequence with exactly these letters, or null. Points into the mapping.
  const Sequence* exact = nullptr;
  /// Whether a longer sequence starts with these letters.
  bool isPrefixOfLonger = false;
};

/// An order of dictionary keys in which canonically equivalent keys are equal.
struct KeyOrder {
  using is_transparent = void;
  bool operator()(std::string_view a, std::string_view b) const;
};

/// The mapping document: a plain value, never changed after decoding.
struct Mapping {
  static constexpr std::chrono::milliseconds defaultTimeout{1500};

  std::int64_t version = 1;
  std::optional<std::vector<std::string>> notes;
  /// As written, not validated; see `timeout`.
  std::optional<std::int64_t> timeoutMilliseconds;
  std::map<std::string, std::string, KeyOrder> tabs;
  /// In document order, which decides between equal letters.
  std::vector<Sequence> sequences;

  /// Matches the letters typed so far against all sequences, normalising each of them. Allocates nothing
  /// for sequences with ASCII keys. Any thread.
  [[nodiscard]] Match lookup(std::span<const std::string> typed) const;

  /// How long to wait on an ambiguous sequence: the document's value, not validated, else the default.
  [[nodiscard]] std::chrono::milliseconds timeout() const;

  friend bool operator==(const Mapping& a, const Mapping& b);
};

}  // namespace keyvora
