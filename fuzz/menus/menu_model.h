#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// A menu tree as plain values, and the expected result of pressing a path of titles in it.
namespace keyvora::fuzz {

struct Node;
using NodeRef = std::shared_ptr<Node>;

struct Node {
  /// How reading the children ends.
  enum class Children { listed, failing, failingWithList, absent, otherValue };

  std::string identifier;
  /// None for an untitled container, or for a title that is not text.
  std::optional<std::string> title;
  /// An error code returned together with the title.
  std::int32_t titleError = 0;
  Children state = Children::listed;
  std::vector<NodeRef> children;
};

/// The log line, and the identifier of the pressed element, if any.
struct Outcome {
  std::string line;
  std::optional<std::string> pressed;
  friend bool operator==(const Outcome&, const Outcome&) = default;
};

/// The expected result of pressing `path` below `menuBar` (null if it cannot be read): a second
/// implementation of the rules.
Outcome expected(const NodeRef& menuBar, const std::vector<std::string>& path, const std::string& label);

}  // namespace keyvora::fuzz
