#pragma once

#include <X11/Xlib.h>

#include <string>
#include <unordered_map>

namespace keyvora::typist {

/// The keys of a keyboard by their place, independent of the layout. A key is named by its label on an
/// American keyboard ("f", ";", "Return", "Option") or by its XKB name in angle brackets ("<AC04>").
class PhysicalKeys {
 public:
  /// Reads the display's key names. Throws std::runtime_error without the XKB extension.
  explicit PhysicalKeys(Display* display);

  /// The display's keycode. Throws std::runtime_error for an unknown name.
  [[nodiscard]] KeyCode code(const std::string& name) const;

 private:
  std::unordered_map<std::string, KeyCode> byXkbName_;
};

}  // namespace keyvora::typist
