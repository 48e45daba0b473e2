#pragma once

#include <optional>
#include <string>
#include <vector>

#include "hosts/x11/accessibility/accessibility_calls.h"

namespace keyvora::x11 {

/// Reads and operates one application as an assistive tool does.
class Reader {
 public:
  explicit Reader(int pid) : pid_(pid) {}

  /// The first element in depth-first order with the role and, unless it is empty, the name; waits for it.
  Accessible await(AtspiRole role, const std::string& name = "");
  Accessible find(AtspiRole role, const std::string& name = "");

  /// The rows of the menu, in order: role, name, and special states.
  std::vector<std::string> rows(const Accessible& menu);

  /// The element's area on the screen.
  static std::optional<AtspiRect> area(const Accessible& element);

  static bool has(const Accessible& element, AtspiStateType state);

 private:
  std::vector<std::string> readRows(const Accessible& menu);
  Accessible findBelow(const Accessible& element, AtspiRole role, const std::string& name);

  int pid_;
  AccessibilityCalls calls_;
};

}  // namespace keyvora::x11
