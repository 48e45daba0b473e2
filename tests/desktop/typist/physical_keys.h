#pragma once

#include <X11/Xlib.h>

#include <string>
#include <unordered_map>

namespace keyvora::typist {

/// The keys of a keyboard by where they are, whatever the layout makes of them. A key is called by what an
/// American keyboard has printed on it ("f", ";", "Return", "Option") or by its XKB name in angle brackets
/// ("<AC04>").
class PhysicalKeys {
 public:
  /// Reads the display's key names. Throws std::runtime_error without the XKB extension.
  explicit PhysicalKeys(Display* display);

  /// The display's key code. Throws std::runtime_error for a name that no key has.
  [[nodiscard]] KeyCode code(const std::string& name) const;

 private:
  std::unordered_map<std::string, KeyCode> byXkbName_;
};

}  // namespace keyvora::typist
