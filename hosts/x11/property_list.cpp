#include "hosts/x11/property_list.h"

#include <charconv>
#include <pugixml.hpp>
#include <string_view>
#include <utility>

namespace keyvora::x11 {
namespace {

/// The text of an element, joined from all its text nodes; none when it contains elements.
std::optional<std::string> textOf(const pugi::xml_node& element) {
  std::string text;
  for (const auto& piece : element.children()) {
    if (piece.type() == pugi::node_element) return std::nullopt;
    if (piece.type() == pugi::node_pcdata || piece.type() == pugi::node_cdata) text += piece.value();
  }
  return text;
}

pugi::xml_node nextElement(pugi::xml_node node) {
  while (node && node.type() != pugi::node_element) node = node.next_sibling();
  return node;
}

bool isScalar(const pugi::xml_node& element) {
  const std::string_view type = element.name();
  return type == "string" || type == "true" || type == "false" || type == "integer";
}

/// The value of a scalar element; none when it is malformed.
std::optional<PropertyValue> scalarOf(const pugi::xml_node& element) {
  const std::string_view type = element.name();
  if (type == "true" || type == "false") return type == "true";
  const auto text = textOf(element);
  if (!text || type == "string") return text;
  std::int64_t number = 0;
  const auto [end, error] = std::from_chars(text->data(), text->data() + text->size(), number);
  if (error != std::errc() || end != text->data() + text->size()) return std::nullopt;
  return number;
}

}  // namespace

std::optional<PropertyList> readPropertyList(const std::filesystem::path& file) {
  pugi::xml_document document;
  constexpr auto options = pugi::parse_default | pugi::parse_ws_pcdata_single;
  if (!document.load_file(file.c_str(), options)) return std::nullopt;
  const auto dictionary = nextElement(document.child("plist").first_child());
  if (std::string_view(dictionary.name()) != "dict") return std::nullopt;

  PropertyList list;
  auto element = nextElement(dictionary.first_child());
  while (element) {
    const auto value = nextElement(element.next_sibling());
    if (std::string_view(element.name()) != "key" || !value) return std::nullopt;
    const auto key = textOf(element);
    if (!key) return std::nullopt;
    if (isScalar(value)) {
      auto scalar = scalarOf(value);
      if (!scalar) return std::nullopt;
      list.insert_or_assign(*key, *std::move(scalar));
    }
    element = nextElement(value.next_sibling());
  }
  return list;
}

}  // namespace keyvora::x11
