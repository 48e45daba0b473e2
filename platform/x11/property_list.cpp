#include "platform/x11/property_list.h"

#include <pugixml.hpp>
#include <string_view>

namespace keyvora::x11 {
namespace {

/// The text of an element, from however many pieces it comes in; none when it holds elements.
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
    if (std::string_view(value.name()) == "string") {
      const auto text = textOf(value);
      if (!text) return std::nullopt;
      list.insert_or_assign(*key, *text);
    }
    element = nextElement(value.next_sibling());
  }
  return list;
}

}  // namespace keyvora::x11
