#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "platform/applications.h"

namespace keyvora::platform {

class Element;
using ElementRef = std::shared_ptr<Element>;

/// A value of a type that the host does not convert (a number, a point, a list with other members than
/// elements).
struct OtherValue {};

/// The value of an attribute: nothing, an element, a list of elements, text (UTF-8), or something else.
using AttributeValue =
    std::variant<std::monostate, ElementRef, std::vector<ElementRef>, std::string, OtherValue>;

/// The answer to reading an attribute: an error code (0 for success, as `AXError`) and a value, which may
/// be absent even on success.
struct AttributeAnswer {
  std::int32_t error = 0;
  AttributeValue value;
};

/// One element of another application's accessibility tree. Main thread. Calls wait for that application,
/// up to the platform's own time limit.
class Element {
 public:
  virtual ~Element() = default;

  /// Reads an attribute by its macOS name. "AXKeyShortcutsValue" is the shortcut that a menu item shows,
  /// where the platform gives it: "command+shift+v", with modifiers and keys named as in mapping documents.
  virtual AttributeAnswer attribute(std::string_view name) = 0;

  /// Performs an action such as "AXPress"; returns the error code.
  virtual std::int32_t perform(std::string_view action) = 0;
};

/// The accessibility interface and the user's permission to use it. Main thread.
class Accessibility {
 public:
  virtual ~Accessibility() = default;

  /// Whether this process has the permission.
  virtual bool isTrusted() = 0;

  /// The same, and asks the user for the permission when it is missing.
  virtual bool isTrustedPrompting() = 0;

  /// The root element of a process; never null. Reading it fails when the process cannot be reached.
  virtual ElementRef application(ProcessIdentifier process) = 0;
};

}  // namespace keyvora::platform
