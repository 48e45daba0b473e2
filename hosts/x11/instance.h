#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "hosts/x11/display.h"

namespace keyvora::x11 {

/// The right to be the display's only keyvora, which ends with the process, however that ends: a selection of
/// X, owned by a connection of its own. Main thread.
class Instance {
 public:
  /// Takes it; null when another process has it and keeps it for `patience`: one that is ending goes. Null,
  /// too, where there is no display.
  static std::unique_ptr<Instance> claim(const std::string& displayName, std::chrono::milliseconds patience);

  /// Whether some process has it.
  static bool isClaimed(Connection& connection);

 private:
  explicit Instance(std::unique_ptr<Connection> connection) : connection_(std::move(connection)) {}

  std::unique_ptr<Connection> connection_;
};

}  // namespace keyvora::x11
