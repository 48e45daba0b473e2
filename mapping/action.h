#pragma once

#include <string>
#include <variant>
#include <vector>

/// What a key sequence does: plain values, one for each kind of action. Text is UTF-8; strings are equal when
/// they are canonically equivalent.
namespace keyvora::action {

/// A fragment of AppleScript, run inside a tell block for the target application.
struct AppleScript {
  std::string script;
  friend bool operator==(const AppleScript& a, const AppleScript& b);
};

/// One key pressed with modifiers, both by name.
struct Keystroke {
  std::string key;
  std::vector<std::string> modifiers;
  friend bool operator==(const Keystroke& a, const Keystroke& b);
};

/// Characters typed one after another behind the lead-in that shows the target's key tips.
struct KeyTips {
  std::string keys;
  friend bool operator==(const KeyTips& a, const KeyTips& b);
};

/// Titles of menus from the menu bar down to the item to press.
struct Menu {
  std::vector<std::string> path;
  friend bool operator==(const Menu& a, const Menu& b);
};

}  // namespace keyvora::action

namespace keyvora {

using Action = std::variant<action::AppleScript, action::Keystroke, action::KeyTips, action::Menu>;

}  // namespace keyvora
