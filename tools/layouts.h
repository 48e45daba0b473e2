#pragma once

#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "platform/keyboard_layout.h"
#include "tools/document.h"
#include "tools/finding.h"
#include "tools/host.h"

namespace keyvora::tools {

/// A keyboard layout and the name that the user gave.
struct NamedLayout {
  std::string name;
  platform::KeyboardLayout keys;
};

/// The layouts that documents are compared with.
struct ChosenLayouts {
  std::vector<NamedLayout> layouts;
  /// The US layout, whose labels documents use for keys.
  platform::KeyboardLayout us;
};

/// Looks up layouts by their names, separated by commas. On failure returns an error message. Main thread.
std::variant<ChosenLayouts, std::string> chooseLayouts(std::string_view names, const HostOnce& host);

/// Warns of every sequence whose letters are on keys with other labels in a layout, and of every keystroke
/// and key tip that types something else there than on a US keyboard. Ignores letters and keys that other
/// rules report.
void compareWithLayouts(const Document& document, const ChosenLayouts& chosen, Findings& findings);

}  // namespace keyvora::tools
