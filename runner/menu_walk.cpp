#include "runner/menu_walk.h"

#include <string>
#include <utility>

#include "text/text.h"

namespace keyvora::menu_walk {
namespace {

/// An element's title; none when it has no title or one that is not text. The error code is ignored; only
/// the value counts.
std::optional<std::string> titleOf(platform::Element& element) {
  auto answer = element.attribute("AXTitle");
  auto* title = std::get_if<std::string>(&answer.value);
  if (title == nullptr) return std::nullopt;
  return std::move(*title);
}

platform::ElementRef findTitled(const std::vector<platform::ElementRef>& elements, std::string_view title) {
  for (const auto& element : elements) {
    const auto own = titleOf(*element);
    if (own && text::equal(*own, title)) return element;
  }
  return nullptr;
}

}  // namespace

platform::ElementRef menuBar(platform::Element& application) {
  auto answer = application.attribute("AXMenuBar");
  auto* element = std::get_if<platform::ElementRef>(&answer.value);
  if (answer.error != 0 || element == nullptr) return nullptr;
  return std::move(*element);
}

std::optional<std::vector<platform::ElementRef>> children(platform::Element& element) {
  auto answer = element.attribute("AXChildren");
  auto* list = std::get_if<std::vector<platform::ElementRef>>(&answer.value);
  if (answer.error != 0 || list == nullptr) return std::nullopt;
  return std::move(*list);
}

platform::ElementRef find(const std::vector<platform::ElementRef>& elements, std::string_view title) {
  for (const auto& element : elements) {
    if (const auto own = titleOf(*element)) {
      if (text::equal(*own, title)) return element;
    } else if (const auto below = children(*element)) {
      if (auto found = findTitled(*below, title)) return found;
    }
  }
  return nullptr;
}

}  // namespace keyvora::menu_walk
