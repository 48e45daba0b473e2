#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "json/tree.h"
#include "mapping/decode.h"
#include "mapping/mapping.h"

namespace keyvora::tools {

/// A sequence without faults, and its place.
struct Entry {
  /// Its index in `sequences`.
  std::size_t index = 0;
  /// Its object in the document.
  json::Value source;
  Sequence sequence;
  std::vector<std::string> letters;

  /// The path to a member of the sequence's object, or of its action's.
  [[nodiscard]] CodingPath path(std::string_view key) const;
  [[nodiscard]] CodingPath actionPath(std::string_view key) const;

  /// The member's value. It exists because the sequence was decoded.
  [[nodiscard]] json::Value value(std::string_view key) const;
  [[nodiscard]] json::Value actionValue(std::string_view key) const;
};

/// A mapping document read with the application's own decoder, which continues after a fault: all faults,
/// and all parts without one.
class Document {
 public:
  explicit Document(std::string bytes);
  Document(const Document&) = delete;
  Document& operator=(const Document&) = delete;

  /// Whether the application would load it.
  [[nodiscard]] bool isSound() const { return faults_.empty(); }

  /// Why the application would not load it, in the order of reading.
  [[nodiscard]] const std::vector<DecodingError>& faults() const { return faults_; }

  /// The whole document if it has no faults, else the parts without one.
  [[nodiscard]] const Mapping& mapping() const { return mapping_; }

  /// The sequences without faults, in document order.
  [[nodiscard]] const std::vector<Entry>& entries() const { return entries_; }

  /// The document's root value; none when it is not JSON.
  [[nodiscard]] std::optional<json::Value> root() const;

 private:
  class Sink;

  std::string bytes_;
  std::optional<json::Tree> tree_;
  Mapping mapping_;
  std::vector<Entry> entries_;
  std::vector<DecodingError> faults_;
};

}  // namespace keyvora::tools
