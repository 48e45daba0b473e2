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

/// A sequence that was decoded whole, and where it stands.
struct Entry {
  /// Among the elements of `sequences`.
  std::size_t index = 0;
  /// Its object in the document.
  json::Value source;
  Sequence sequence;
  std::vector<std::string> letters;

  /// The path to a member of the sequence's object, or of its action's.
  [[nodiscard]] CodingPath path(std::string_view key) const;
  [[nodiscard]] CodingPath actionPath(std::string_view key) const;

  /// The member's value, which is there because the sequence was decoded.
  [[nodiscard]] json::Value value(std::string_view key) const;
  [[nodiscard]] json::Value actionValue(std::string_view key) const;
};

/// A mapping document read with the application's own decoder, which goes on after a fault: all faults, and
/// whatever is sound.
class Document {
 public:
  explicit Document(std::string bytes);
  Document(const Document&) = delete;
  Document& operator=(const Document&) = delete;

  /// Whether the application would load it.
  [[nodiscard]] bool isSound() const { return faults_.empty(); }

  /// Why it would not, in the order of reading.
  [[nodiscard]] const std::vector<DecodingError>& faults() const { return faults_; }

  /// The whole document if it is sound, else what could be made of it.
  [[nodiscard]] const Mapping& mapping() const { return mapping_; }

  /// The sound sequences in document order.
  [[nodiscard]] const std::vector<Entry>& entries() const { return entries_; }

  /// The document's outermost value; none when it is not JSON.
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
