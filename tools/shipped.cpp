#include "tools/shipped.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <sstream>
#include <utility>
#include <vector>

#include "tools/embedded.h"

namespace keyvora::tools {
namespace {

std::string sized(std::string_view text) {
  return std::to_string(text.size()) + ":" + std::string(text);
}

/// The value in a canonical form.
std::string canonicalForm(const json::Value& value) {
  switch (value.type()) {
    case json::Type::string:
      return "s" + sized(value.text());
    case json::Type::array: {
      std::string text = "[";
      for (const auto element : value.elements()) text += canonicalForm(element);
      return text + "]";
    }
    case json::Type::object: {
      std::vector<std::pair<std::string, std::string>> members;
      for (const auto member : value.members()) {
        members.emplace_back(member.key.text(), canonicalForm(member.value));
      }
      std::ranges::stable_sort(members, {}, &std::pair<std::string, std::string>::first);
      std::string text = "{";
      for (const auto& [key, content] : members) text += sized(key) + content;
      return text + "}";
    }
    default:
      return "w" + sized(value.text());
  }
}

/// A line of resources/shipped.txt.
struct Line {
  int edition = 0;
  std::string fingerprint;
  std::string keys;
};

/// The lines about one document.
std::vector<Line> linesOf(std::string_view documentName) {
  std::vector<Line> found;
  std::istringstream lines{std::string(embedded::shippedEntries)};
  std::string document;
  Line line;
  while (lines >> document >> line.edition >> line.fingerprint >> line.keys) {
    if (document == documentName) found.push_back(line);
  }
  return found;
}

}  // namespace

std::span<const ShippedDocument> shippedDocuments() {
  static const std::array documents{
      ShippedDocument{"calc", embedded::calcDocument},
      ShippedDocument{"gnumeric", embedded::gnumericDocument},
      ShippedDocument{"excel", embedded::defaultDocument},
  };
  return documents;
}

const ShippedDocument* shippedDocument(std::string_view name) {
  const auto all = shippedDocuments();
  const auto found = std::ranges::find(all, name, &ShippedDocument::name);
  return found == all.end() ? nullptr : &*found;
}

std::string fingerprint(const json::Value& value) {
  // FNV-1a: collisions can be made on purpose, but they gain nothing.
  std::uint64_t hash = 0xCBF29CE484222325;
  for (const char c : canonicalForm(value)) {
    hash ^= static_cast<unsigned char>(c);
    hash *= 0x100000001B3;
  }
  std::array<char, 17> text{};
  std::snprintf(text.data(), text.size(), "%016llx", static_cast<unsigned long long>(hash));
  return text.data();
}

ShippedEntries everShipped(std::string_view documentName) {
  ShippedEntries entries;
  for (auto& line : linesOf(documentName)) entries.emplace(std::move(line.fingerprint), line.edition);
  return entries;
}

std::map<std::string, int, std::less<>> firstEditions(std::string_view documentName) {
  std::map<std::string, int, std::less<>> editions;
  for (auto& line : linesOf(documentName)) {
    const auto [first, isNew] = editions.emplace(std::move(line.keys), line.edition);
    if (!isNew) first->second = std::min(first->second, line.edition);
  }
  return editions;
}

}  // namespace keyvora::tools
