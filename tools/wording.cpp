#include "tools/wording.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <iomanip>
#include <sstream>
#include <utility>
#include <variant>

#include "mapping/document_keys.h"
#include "platform/keyboard.h"
#include "runner/modifiers.h"
#include "text/text.h"

namespace keyvora::tools {
namespace {

template <class... Visitors>
struct Overloaded : Visitors... {
  using Visitors::operator()...;
};
template <class... Visitors>
Overloaded(Visitors...) -> Overloaded<Visitors...>;

/// The modifiers in the order in which Mac menus show them.
constexpr std::array modifierSymbols{
    std::pair{platform::event_flag::control, std::string_view("⌃")},
    std::pair{platform::event_flag::option, std::string_view("⌥")},
    std::pair{platform::event_flag::shift, std::string_view("⇧")},
    std::pair{platform::event_flag::command, std::string_view("⌘")},
};

std::string firstLine(std::string_view script) {
  const auto end = script.find_first_of("\r\n");
  return std::string(script.substr(0, end)) + (end == std::string_view::npos ? "" : " ...");
}

std::string path(const action::Menu& menu) {
  std::string all;
  for (const auto& title : menu.path) all += (all.empty() ? "" : " > ") + title;
  return all;
}

std::string tips(const action::KeyTips& keyTips) {
  std::string all = "key tips";
  for (const auto& character : text::characters(text::upperCased(keyTips.keys))) {
    if (!text::isWhiteSpace(character)) all += " " + character;
  }
  return all;
}

}  // namespace

std::string inQuotes(std::string_view text) {
  std::string result = "\"";
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      result += '\\';
      result += c;
    } else if (byte < 0x20 || byte == 0x7F) {
      std::array<char, 8> escape{};
      std::snprintf(escape.data(), escape.size(), "\\u%04X", static_cast<unsigned>(byte));
      result += escape.data();
    } else {
      result += c;
    }
  }
  return result + "\"";
}

std::string counted(std::size_t count, std::string_view noun) {
  return std::to_string(count) + " " + std::string(noun) + (count == 1 ? "" : "s");
}

std::string inSeconds(std::chrono::milliseconds time) {
  std::ostringstream number;
  number << std::setprecision(15) << std::chrono::duration<double>(time).count();
  return number.str() + (time == std::chrono::seconds(1) ? " second" : " seconds");
}

std::string_view kindOf(const Action& action) {
  return std::visit(Overloaded{[](const action::AppleScript&) { return kind::applescript; },
                               [](const action::Keystroke&) { return kind::keystroke; },
                               [](const action::KeyTips&) { return kind::keytips; },
                               [](const action::Menu&) { return kind::menu; }},
                    action);
}

std::string summary(const Action& action) {
  return std::visit(Overloaded{[](const action::AppleScript& script) { return firstLine(script.script); },
                               [](const action::Keystroke& keystroke) { return shortcut(keystroke); },
                               [](const action::KeyTips& keyTips) { return tips(keyTips); },
                               [](const action::Menu& menu) { return path(menu); }},
                    action);
}

std::string shortcut(const action::Keystroke& keystroke) {
  const auto flags = modifierFlags(keystroke.modifiers);
  std::string result;
  for (const auto& [flag, symbol] : modifierSymbols) {
    if ((flags & flag) != 0) result += symbol;
  }
  auto key = text::upperCased(keystroke.key);
  if (text::characters(key).size() > 1 && key.front() != 'F') {
    key = text::lowerCased(key);
    key.front() = text::upperCased(key.substr(0, 1)).front();
  }
  return result + key;
}

std::optional<std::string> tabOf(const Sequence& sequence, const Mapping& mapping) {
  const auto letters = sequence.letters();
  if (letters.empty()) return std::nullopt;
  const auto found = std::ranges::find_if(mapping.tabs, [&](const auto& tab) {
    return Sequence{tab.first, {}, {}}.letters() == std::vector{letters.front()};
  });
  if (found == mapping.tabs.end()) return std::nullopt;
  return found->second;
}

}  // namespace keyvora::tools
