#include "hosts/x11/keyboard/layouts.h"

#include <xkbcommon/xkbcommon.h>

#include <array>
#include <memory>

#include "hosts/x11/keyboard/key_codes.h"

namespace keyvora::x11 {
namespace {

struct Release {
  void operator()(xkb_context* context) const { xkb_context_unref(context); }
  void operator()(xkb_keymap* keymap) const { xkb_keymap_unref(keymap); }
  void operator()(xkb_state* state) const { xkb_state_unref(state); }
};
using Context = std::unique_ptr<xkb_context, Release>;
using Keymap = std::unique_ptr<xkb_keymap, Release>;
using State = std::unique_ptr<xkb_state, Release>;

struct LayoutName {
  std::string layout;
  std::string variant;
};

bool isWord(std::string_view text) {
  constexpr std::string_view characters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-";
  return !text.empty() && text.find_first_not_of(characters) == std::string_view::npos;
}

/// The parts of a name like "ch(fr)"; none for a text that cannot be a layout's name.
std::optional<LayoutName> partsOf(std::string_view name) {
  const auto bracket = name.find('(');
  LayoutName parts{std::string(name.substr(0, bracket)), {}};
  if (!isWord(parts.layout)) return std::nullopt;
  if (bracket == std::string_view::npos) return parts;
  if (!name.ends_with(')')) return std::nullopt;
  parts.variant = name.substr(bracket + 1, name.size() - bracket - 2);
  if (!isWord(parts.variant)) return std::nullopt;
  return parts;
}

/// Unknown layouts are reported by the caller, not on standard error.
void logNothing(xkb_context*, xkb_log_level, const char*, va_list) {}

/// The character that the key types in this state, else the name of its symbol; empty for no symbol.
std::string typedBy(xkb_state* state, xkb_keycode_t key) {
  const auto symbol = xkb_state_key_get_one_sym(state, key);
  if (symbol == XKB_KEY_NoSymbol) return {};
  std::array<char, 64> buffer{};
  const auto* const first = reinterpret_cast<const unsigned char*>(buffer.data());
  const bool isCharacter = xkb_keysym_to_utf8(symbol, buffer.data(), buffer.size()) > 1;
  if (isCharacter && *first >= 0x20 && *first != 0x7F) return buffer.data();
  xkb_keysym_get_name(symbol, buffer.data(), buffer.size());
  return buffer.data();
}

}  // namespace

std::optional<platform::KeyboardLayout> layoutNamed(const std::string& name) {
  const auto parts = partsOf(name);
  if (!parts) return std::nullopt;
  const Context context(xkb_context_new(XKB_CONTEXT_NO_ENVIRONMENT_NAMES));
  if (!context) return std::nullopt;
  xkb_context_set_log_fn(context.get(), logNothing);
  const xkb_rule_names names{.rules = "evdev",
                             .model = "pc105",
                             .layout = parts->layout.c_str(),
                             .variant = parts->variant.c_str(),
                             .options = ""};
  const Keymap keymap(xkb_keymap_new_from_names(context.get(), &names, XKB_KEYMAP_COMPILE_NO_FLAGS));
  if (!keymap) return std::nullopt;
  const State alone(xkb_state_new(keymap.get()));
  const State withShift(xkb_state_new(keymap.get()));
  if (!alone || !withShift) return std::nullopt;
  const auto shift = xkb_keymap_mod_get_index(keymap.get(), XKB_MOD_NAME_SHIFT);
  xkb_state_update_mask(withShift.get(), 1U << shift, 0, 0, 0, 0, 0);

  platform::KeyboardLayout layout;
  for (std::uint16_t code = 0; code < key_code::count; ++code) {
    const auto named = keyName(code);
    if (!named) continue;
    const auto key = xkb_keymap_key_by_name(keymap.get(), std::string(*named).c_str());
    if (key == XKB_KEYCODE_INVALID) continue;
    layout[code] = {typedBy(alone.get(), key), typedBy(withShift.get(), key)};
  }
  return layout;
}

std::vector<std::string> commonLayouts() {
  return {"us", "us(dvorak)", "gb", "fr", "fr(bepo)", "de", "ch", "ch(fr)", "es", "it", "ru"};
}

}  // namespace keyvora::x11
