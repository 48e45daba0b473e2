#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// A menu tree as plain values, and what pressing a path of titles in it must come to.
namespace keyvora::fuzz {

struct Node;
using NodeRef = std::shared_ptr<Node>;

struct Node {
  /// How reading the children goes.
  enum class Children { listed, failing, failingWithList, absent, otherValue };

  std::string identifier;
  /// None for an untitled container; or the title is there and is no text.
  std::optional<std::string> title;
  /// An error that comes along with the title.
  std::int32_t titleError = 0;
  Children state = Children::listed;
  std::vector<NodeRef> children;
};

/// The log line and the identifier of the element that is pressed, if any is.
struct Outcome {
  std::string line;
  std::optional<std::string> pressed;
  friend bool operator==(const Outcome&, const Outcome&) = default;
};

/// What must come of pressing `path` below `menuBar` (none: it cannot be read), by the rules written down a
/// second time.
Outcome expected(const NodeRef& menuBar, const std::vector<std::string>& path, const std::string& label);

}  // namespace keyvora::fuzz
