#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace keyvora::platform {

/// What a key types: a character in UTF-8, the system's name of a symbol without a character
/// ("dead_circumflex"), or nothing.
struct TypedByKey {
  std::string alone;
  std::string withShift;

  friend bool operator==(const TypedByKey&, const TypedByKey&) = default;
};

/// A keyboard layout: what its keys type, by virtual key code. A missing key types nothing.
using KeyboardLayout = std::map<std::uint16_t, TypedByKey>;

}  // namespace keyvora::platform
