#pragma once

#include <string_view>

namespace keyvora::platform {

/// The system console.
class Console {
 public:
  virtual ~Console() = default;

  /// Writes one record. Any thread. Never blocks: a record that the console cannot take is lost.
  virtual void write(std::string_view record) = 0;
};

}  // namespace keyvora::platform
