#include "hosts/x11/accessibility/shown_shortcut.h"

#include <gdk/gdk.h>

#include <array>
#include <utility>

#include "text/ascii.h"

namespace keyvora::x11 {
namespace {

/// GTK's names of modifiers in lower case, and the names of the same keys on a Mac.
constexpr std::array modifiers{
    std::pair{std::string_view("primary"), std::string_view("command")},
    std::pair{std::string_view("control"), std::string_view("command")},
    std::pair{std::string_view("ctrl"), std::string_view("command")},
    std::pair{std::string_view("alt"), std::string_view("option")},
    std::pair{std::string_view("mod1"), std::string_view("option")},
    std::pair{std::string_view("super"), std::string_view("control")},
    std::pair{std::string_view("shift"), std::string_view("shift")},
};

std::string inSmallLetters(std::string_view text) {
  std::string small(text);
  for (auto& c : small) c = text::asciiLower(c);
  return small;
}

std::optional<std::string_view> modifierNamed(std::string_view gtkName) {
  const auto name = inSmallLetters(gtkName);
  for (const auto& [theirs, ours] : modifiers) {
    if (name == theirs) return ours;
  }
  return std::nullopt;
}

/// The character that a key types, or its name.
std::string keyNamed(std::string_view gtkName) {
  const auto name = std::string(gtkName);
  const auto character = gdk_keyval_to_unicode(gdk_keyval_from_name(name.c_str()));
  if (character > ' ' && character < 0x7F) return {text::asciiLower(static_cast<char>(character))};
  return inSmallLetters(name);
}

}  // namespace

std::optional<std::string> shortcutIn(std::string_view binding) {
  for (int field = 0; field < 2; ++field) {
    const auto end = binding.find(';');
    if (end == std::string_view::npos) return std::nullopt;
    binding.remove_prefix(end + 1);
  }
  std::string shortcut;
  while (binding.starts_with('<')) {
    const auto end = binding.find('>');
    if (end == std::string_view::npos) return std::nullopt;
    const auto modifier = modifierNamed(binding.substr(1, end - 1));
    if (!modifier) return std::nullopt;
    shortcut.append(*modifier).append("+");
    binding.remove_prefix(end + 1);
  }
  if (binding.empty()) return std::nullopt;
  return shortcut + keyNamed(binding);
}

}  // namespace keyvora::x11
