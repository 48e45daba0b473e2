#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "hosts/x11/display.h"

namespace keyvora::x11 {

/// Makes the process the display's only keyvora until it ends in any way: an X selection owned by a
/// connection of its own. Main thread.
class Instance {
 public:
  /// Claims it. Null when another process has it and keeps it for `patience`, which a process that is
  /// ending does not; null also without a display.
  static std::unique_ptr<Instance> claim(const std::string& displayName, std::chrono::milliseconds patience);

  /// Whether any process has it.
  static bool isClaimed(Connection& connection);

 private:
  explicit Instance(std::unique_ptr<Connection> connection) : connection_(std::move(connection)) {}

  std::unique_ptr<Connection> connection_;
};

}  // namespace keyvora::x11
