#pragma once

#include <string_view>

namespace keyvora::platform {

/// The system console.
class Console {
 public:
  virtual ~Console() = default;

  /// Writes one record. Any thread. Never blocks: a console that cannot take the record loses it.
  virtual void write(std::string_view record) = 0;
};

}  // namespace keyvora::platform
