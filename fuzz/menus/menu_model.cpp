#include "fuzz/menus/menu_model.h"

#include "text/text.h"

namespace keyvora::fuzz {
namespace {

bool readable(const Node& node) {
  return node.state == Node::Children::listed;
}

bool matches(const Node& node, const std::string& title) {
  return node.title && text::canonical(*node.title) == text::canonical(title);
}

/// The children in matching order: an untitled child is replaced by its own children.
std::vector<NodeRef> candidates(const Node& parent) {
  std::vector<NodeRef> result;
  for (const auto& child : parent.children) {
    if (child->title) {
      result.push_back(child);
    } else if (readable(*child)) {
      result.insert(result.end(), child->children.begin(), child->children.end());
    }
  }
  return result;
}

}  // namespace

Outcome expected(const NodeRef& menuBar, const std::vector<std::string>& path, const std::string& label) {
  if (!menuBar) return {label + " FAILED: no menu bar", {}};
  auto current = menuBar;
  for (const auto& title : path) {
    if (!readable(*current)) return {label + " FAILED at " + title, {}};
    NodeRef match;
    for (const auto& candidate : candidates(*current)) {
      if (match == nullptr && matches(*candidate, title)) match = candidate;
    }
    if (!match) return {label + " FAILED: no menu named " + title, {}};
    current = match;
  }
  return {label + " (menu)", current->identifier};
}

}  // namespace keyvora::fuzz
