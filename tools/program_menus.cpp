#include "tools/program_menus.h"

#include <algorithm>
#include <span>
#include <string_view>
#include <variant>

#include "runner/key_names.h"
#include "runner/menu_walk.h"
#include "runner/modifiers.h"
#include "tools/spelling.h"
#include "tools/wording.h"

namespace keyvora::tools {
namespace {

/// No program has deeper menus; a faulty one may report an item as its own descendant.
constexpr std::size_t deepest = 16;

/// How many titles are listed; further ones are only counted.
constexpr std::size_t mostNamed = 12;

/// An element that caches its answers: many paths share the same menus.
class Remembering final : public platform::Element {
 public:
  explicit Remembering(platform::ElementRef element) : element_(std::move(element)) {}

  platform::AttributeAnswer attribute(std::string_view name) override {
    if (const auto known = answers_.find(name); known != answers_.end()) return known->second;
    auto answer = element_->attribute(name);
    if (auto* list = std::get_if<std::vector<platform::ElementRef>>(&answer.value)) {
      for (auto& each : *list) each = std::make_shared<Remembering>(std::move(each));
    }
    return answers_.emplace(name, std::move(answer)).first->second;
  }

  /// Never presses anything.
  std::int32_t perform(std::string_view) override { return 0; }

 private:
  platform::ElementRef element_;
  std::map<std::string, platform::AttributeAnswer, std::less<>> answers_;
};

std::optional<std::string> textOf(platform::Element& element, std::string_view attribute) {
  auto answer = element.attribute(attribute);
  auto* text = std::get_if<std::string>(&answer.value);
  if (text == nullptr) return std::nullopt;
  return std::move(*text);
}

/// The titles that a search among these elements compares.
std::vector<std::string> titlesAmong(const std::vector<platform::ElementRef>& elements) {
  std::vector<std::string> titles;
  for (const auto& element : elements) {
    if (auto title = textOf(*element, "AXTitle")) {
      titles.push_back(std::move(*title));
    } else if (const auto below = menu_walk::children(*element)) {
      for (const auto& each : *below) {
        if (auto inner = textOf(*each, "AXTitle")) titles.push_back(std::move(*inner));
      }
    }
  }
  return titles;
}

std::string instead(const std::string& title, const std::vector<std::string>& titles) {
  const std::vector<std::string_view> candidates(titles.begin(), titles.end());
  if (const auto meant = nearest(title, candidates)) return "did you mean " + inQuotes(*meant) + "?";
  if (titles.empty()) return "the menu is empty";
  std::string names;
  for (const auto& each : std::span(titles).first(std::min(titles.size(), mostNamed))) {
    names += (names.empty() ? "" : ", ") + inQuotes(each);
  }
  if (titles.size() > mostNamed) names += " and " + std::to_string(titles.size() - mostNamed) + " more";
  return "there are " + names;
}

/// A shortcut in the door's form: names of modifiers and a key, joined by plus signs.
std::optional<std::pair<std::uint16_t, std::uint64_t>> shortcutFrom(std::string_view text) {
  std::uint64_t flags = 0;
  for (auto plus = text.find('+'); plus != std::string_view::npos && plus + 1 < text.size();
       plus = text.find('+')) {
    const auto flag = modifierFlag(text.substr(0, plus));
    if (!flag) return std::nullopt;
    flags |= *flag;
    text.remove_prefix(plus + 1);
  }
  const auto code = keyCodeFor(text);
  if (!code) return std::nullopt;
  return std::pair(*code, flags);
}

}  // namespace

ProgramMenus::ProgramMenus(platform::ElementRef menuBar)
    : menuBar_(std::make_shared<Remembering>(std::move(menuBar))) {}

std::optional<std::string> ProgramMenus::missing(const std::vector<std::string>& path) {
  auto element = menuBar_;
  std::string where = "the menu bar";
  for (const auto& title : path) {
    const auto children = menu_walk::children(*element);
    if (!children) return where + " cannot be read";
    element = menu_walk::find(*children, title);
    if (!element) {
      return "no menu item " + inQuotes(title) + " in " + where + "; " +
             instead(title, titlesAmong(*children));
    }
    where = inQuotes(title);
  }
  return std::nullopt;
}

std::vector<std::string> ProgramMenus::titles() {
  const auto children = menu_walk::children(*menuBar_);
  return children ? titlesAmong(*children) : std::vector<std::string>();
}

bool ProgramMenus::showShortcuts() {
  return !shortcuts().empty();
}

std::optional<std::vector<std::string>> ProgramMenus::itemWith(const action::Keystroke& keystroke) {
  const auto code = keyCodeFor(keystroke.key);
  if (!code) return std::nullopt;
  const auto found = shortcuts().find({*code, modifierFlags(keystroke.modifiers)});
  if (found == shortcuts().end()) return std::nullopt;
  return found->second;
}

const std::map<ProgramMenus::Shortcut, std::vector<std::string>>& ProgramMenus::shortcuts() {
  if (!shortcuts_) {
    shortcuts_.emplace();
    collect(*menuBar_, {}, deepest);
  }
  return *shortcuts_;
}

void ProgramMenus::collect(platform::Element& element, const std::vector<std::string>& path,
                           std::size_t levels) {
  if (levels == 0) return;
  const auto children = menu_walk::children(element);
  if (!children) return;
  for (const auto& child : *children) {
    auto below = path;
    if (auto title = textOf(*child, "AXTitle")) below.push_back(std::move(*title));
    if (const auto text = textOf(*child, "AXKeyShortcutsValue")) {
      if (const auto shortcut = shortcutFrom(*text)) shortcuts_->emplace(*shortcut, below);
    }
    collect(*child, below, levels - 1);
  }
}

}  // namespace keyvora::tools
