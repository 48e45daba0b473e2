#pragma once

#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/document.h"

namespace keyvora::tools::rule {

/// An element of an array, and the path to it.
struct Element {
  json::Value value;
  CodingPath path;
};

/// The elements of an array among the members of an entry's action.
inline std::vector<Element> elementsOf(const Entry& entry, std::string_view key) {
  std::vector<Element> elements;
  for (const auto value : entry.actionValue(key).elements()) {
    auto path = entry.actionPath(key);
    path.emplace_back(elements.size());
    elements.push_back({value, std::move(path)});
  }
  return elements;
}

}  // namespace keyvora::tools::rule
