#include "appcast/feed_element.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace keyvora::appcast {
namespace {

constexpr std::string_view sparkleNamespace = "http://www.andymatuschak.org/xml-namespaces/sparkle";

/// Attributes of one element that are looked at: far more than any feed has, and no work for a hostile one.
constexpr int maxAttributes = 64;

std::pair<std::string_view, std::string_view> splitName(std::string_view name) {
  const auto colon = name.find(':');
  if (colon == std::string_view::npos) return {"", name};
  return {name.substr(0, colon), name.substr(colon + 1)};
}

/// The address that a prefix stands for at this element; empty when it is not declared.
std::string_view namespaceOf(std::string_view prefix, pugi::xml_node element) {
  const std::string declaration = prefix.empty() ? "xmlns" : "xmlns:" + std::string(prefix);
  for (; element; element = element.parent()) {
    int looked = 0;
    for (const auto& attribute : element.attributes()) {
      if (declaration == attribute.name()) return attribute.value();
      if (++looked == maxAttributes) break;
    }
  }
  return "";
}

/// How well an element's language suits: the lower the better.
std::size_t languageRank(const pugi::xml_node& element, std::span<const std::string> languages) {
  std::string language = element.attribute("xml:lang").value();
  std::ranges::replace(language, '-', '_');
  if (language.empty()) return languages.size();
  const auto found = std::ranges::find(languages, language);
  return found == languages.end() ? languages.size() + 1
                                  : static_cast<std::size_t>(found - languages.begin());
}

template <class Matches>
pugi::xml_node bestChild(const pugi::xml_node& element, std::span<const std::string> languages,
                         Matches matches) {
  pugi::xml_node best;
  for (const auto& child : element.children()) {
    if (child.type() != pugi::node_element || !matches(child)) continue;
    if (!best || languageRank(child, languages) < languageRank(best, languages)) best = child;
  }
  return best;
}

}  // namespace

pugi::xml_attribute sparkleAttribute(const pugi::xml_node& element, std::string_view name) {
  int looked = 0;
  for (const auto& attribute : element.attributes()) {
    const auto [prefix, local] = splitName(attribute.name());
    if (local == name && !prefix.empty() && namespaceOf(prefix, element) == sparkleNamespace)
      return attribute;
    if (++looked == maxAttributes) break;
  }
  return {};
}

pugi::xml_node sparkleChild(const pugi::xml_node& element, std::string_view name,
                            std::span<const std::string> languages) {
  return bestChild(element, languages, [name](const pugi::xml_node& child) {
    const auto [prefix, local] = splitName(child.name());
    return local == name && namespaceOf(prefix, child) == sparkleNamespace;
  });
}

pugi::xml_node plainChild(const pugi::xml_node& element, std::string_view name,
                          std::span<const std::string> languages) {
  return bestChild(element, languages, [name](const pugi::xml_node& child) { return name == child.name(); });
}

std::string text(const pugi::xml_node& element) {
  std::string collected;
  for (pugi::xml_node node = element.first_child(); node;) {
    if (node.type() == pugi::node_pcdata || node.type() == pugi::node_cdata) collected += node.value();
    if (node.first_child()) {
      node = node.first_child();
      continue;
    }
    while (node != element && !node.next_sibling()) node = node.parent();
    if (node == element) break;
    node = node.next_sibling();
  }
  return trimmed(collected);
}

std::string trimmed(std::string_view text) {
  constexpr std::string_view space = " \t\r\n\v\f";
  const auto first = text.find_first_not_of(space);
  if (first == std::string_view::npos) return {};
  return std::string(text.substr(first, text.find_last_not_of(space) - first + 1));
}

}  // namespace keyvora::appcast
