#include "physical_keys.h"

#include <X11/XKBlib.h>

#include <array>
#include <memory>
#include <span>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace keyvora::typist {
namespace {

/// The labels of the rows of an American keyboard, from the left, and the XKB name of each row.
constexpr std::array<std::pair<std::string_view, std::string_view>, 4> rows{{
    {"AE", "1234567890-="},
    {"AD", "qwertyuiop[]"},
    {"AC", "asdfghjkl;'"},
    {"AB", "zxcvbnm,./"},
}};

const std::unordered_map<std::string, std::string>& namedKeys() {
  static const std::unordered_map<std::string, std::string> names{
      {"`", "TLDE"},      {"\\", "BKSL"},          {"Space", "SPCE"},      {"Return", "RTRN"},
      {"Escape", "ESC"},  {"Tab", "TAB"},          {"BackSpace", "BKSP"},  {"Delete", "DELE"},
      {"Up", "UP"},       {"Down", "DOWN"},        {"Left", "LEFT"},       {"Right", "RGHT"},
      {"Home", "HOME"},   {"End", "END"},          {"F1", "FK01"},         {"F4", "FK04"},
      {"F10", "FK10"},    {"Shift", "LFSH"},       {"RightShift", "RTSH"}, {"Control", "LCTL"},
      {"Option", "LALT"}, {"RightOption", "RALT"}, {"Super", "LWIN"},      {"CapsLock", "CAPS"},
  };
  return names;
}

std::string xkbName(const std::string& key) {
  if (key.size() > 2 && key.front() == '<' && key.back() == '>') return key.substr(1, key.size() - 2);
  if (const auto named = namedKeys().find(key); named != namedKeys().end()) return named->second;
  if (key.size() == 1) {
    for (const auto& [row, legends] : rows) {
      const auto column = legends.find(key.front());
      if (column == std::string_view::npos) continue;
      const auto number = std::to_string(column + 1);
      return std::string(row) + (number.size() < 2 ? "0" : "") + number;
    }
  }
  throw std::runtime_error("no key is called " + key);
}

struct FreeKeyboard {
  void operator()(XkbDescPtr keyboard) const { XkbFreeKeyboard(keyboard, 0, True); }
};

}  // namespace

PhysicalKeys::PhysicalKeys(Display* display) {
  const std::unique_ptr<XkbDescRec, FreeKeyboard> keyboard(XkbGetMap(display, 0, XkbUseCoreKbd));
  if (!keyboard || XkbGetNames(display, XkbKeyNamesMask, keyboard.get()) != Success) {
    throw std::runtime_error("this display does not name its keys (XKB)");
  }
  const std::span keys(keyboard->names->keys, std::size_t{keyboard->max_key_code} + 1);
  for (std::size_t code = keyboard->min_key_code; code < keys.size(); ++code) {
    const std::string_view name(keys[code].name, XkbKeyNameLength);
    byXkbName_.emplace(name.substr(0, name.find('\0')), static_cast<KeyCode>(code));
  }
}

KeyCode PhysicalKeys::code(const std::string& name) const {
  const auto found = byXkbName_.find(xkbName(name));
  if (found == byXkbName_.end()) throw std::runtime_error("this keyboard has no key " + name);
  return found->second;
}

}  // namespace keyvora::typist
