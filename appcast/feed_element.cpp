#include "appcast/feed_element.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <optional>

#include "appcast/limits.h"

namespace keyvora::appcast {
namespace {

constexpr std::string_view sparkleNamespace = "http://www.andymatuschak.org/xml-namespaces/sparkle";

/// The first attributes of an element, up to a limit, so that an element with a million of them costs
/// little.
template <class Matches>
pugi::xml_attribute findAttribute(const pugi::xml_node& element, Matches matches) {
  std::size_t looked = 0;
  for (const auto& attribute : element.attributes()) {
    if (matches(attribute)) return attribute;
    if (++looked == maxAttributes) break;
  }
  return {};
}

/// The name's prefix (empty for none) if the rest of the name is `local`; none if it is not, or if the
/// prefix is too long. Reads no more of the name than that takes.
std::optional<std::string_view> prefixBefore(std::string_view local, const char* name) {
  const std::size_t longest = maxPrefixLength + 1 + local.size();
  const std::string_view whole(name, strnlen(name, longest + 1));
  if (whole == local) return "";
  if (whole.size() > longest || whole.size() <= local.size() || !whole.ends_with(local)) return std::nullopt;
  const auto prefix = whole.substr(0, whole.size() - local.size() - 1);
  const bool isPrefix = whole[prefix.size()] == ':' && prefix.find(':') == std::string_view::npos;
  return isPrefix ? std::optional(prefix) : std::nullopt;
}

/// The address that a prefix stands for at this element; empty when it is not declared.
std::string_view namespaceOf(std::string_view prefix, pugi::xml_node element) {
  const std::string declaration = prefix.empty() ? "xmlns" : "xmlns:" + std::string(prefix);
  const auto declares = [&declaration](const pugi::xml_attribute& attribute) {
    return std::strcmp(declaration.c_str(), attribute.name()) == 0;
  };
  for (; element; element = element.parent()) {
    if (const auto found = findAttribute(element, declares)) return found.value();
  }
  return "";
}

/// The rank of an element by its language: the lower the better.
std::size_t languageRank(const pugi::xml_node& element, std::span<const std::string> languages) {
  const auto isLanguage = [](const pugi::xml_attribute& each) {
    return std::strcmp(each.name(), "xml:lang") == 0;
  };
  std::string language = findAttribute(element, isLanguage).value();
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
  std::size_t bestRank = 0;
  for (const auto& child : element.children()) {
    if (child.type() != pugi::node_element || !matches(child)) continue;
    const auto rank = languageRank(child, languages);
    if (best && rank >= bestRank) continue;
    best = child;
    bestRank = rank;
  }
  return best;
}

}  // namespace

pugi::xml_attribute sparkleAttribute(const pugi::xml_node& element, std::string_view name) {
  return findAttribute(element, [&](const pugi::xml_attribute& attribute) {
    const auto prefix = prefixBefore(name, attribute.name());
    return prefix && !prefix->empty() && namespaceOf(*prefix, element) == sparkleNamespace;
  });
}

pugi::xml_node sparkleChild(const pugi::xml_node& element, std::string_view name,
                            std::span<const std::string> languages) {
  return bestChild(element, languages, [name](const pugi::xml_node& child) {
    const auto prefix = prefixBefore(name, child.name());
    return prefix && namespaceOf(*prefix, child) == sparkleNamespace;
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
