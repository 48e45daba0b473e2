#include "tools/document.h"

#include <utility>
#include <variant>

#include "mapping/document_keys.h"

namespace keyvora::tools {

CodingPath Entry::path(std::string_view key) const {
  return {std::string(key::sequences), index, std::string(key)};
}

CodingPath Entry::actionPath(std::string_view key) const {
  return {std::string(key::sequences), index, std::string(key::action), std::string(key)};
}

json::Value Entry::value(std::string_view key) const {
  return source.find(key).value();
}

json::Value Entry::actionValue(std::string_view key) const {
  return value(key::action).find(key).value();
}

/// Collects everything that the decoder reports.
class Document::Sink final : public DecodeSink {
 public:
  explicit Sink(Document& document) : document_(document) {}

  bool fault(DecodingError error) override {
    if (const auto index = sequenceAt(error.path)) next_ = *index + 1;
    document_.faults_.push_back(std::move(error));
    return true;
  }

  void sequence(const Sequence& sequence, const json::Value& source) override {
    document_.entries_.push_back({next_++, source, sequence, sequence.letters()});
  }

 private:
  /// The index of the sequence that a path leads to or into.
  static std::optional<std::size_t> sequenceAt(const CodingPath& path) {
    if (path.size() < 2 || path[0] != PathElement(std::string(key::sequences))) return std::nullopt;
    const auto* index = std::get_if<std::size_t>(&path[1]);
    return index == nullptr ? std::nullopt : std::optional(*index);
  }

  Document& document_;
  /// The index of the next sequence. The decoder reports sequences in order, each either complete or by its
  /// faults.
  std::size_t next_ = 0;
};

Document::Document(std::string bytes) : bytes_(std::move(bytes)) {
  auto parsed = json::Tree::parse(bytes_);
  if (const auto* error = std::get_if<json::SyntaxError>(&parsed)) {
    faults_.push_back(decodingError(*error));
    return;
  }
  tree_.emplace(std::get<json::Tree>(std::move(parsed)));
  Sink sink(*this);
  mapping_ = decode(*tree_, sink);
}

std::optional<json::Value> Document::root() const {
  if (!tree_) return std::nullopt;
  return tree_->root();
}

}  // namespace keyvora::tools
