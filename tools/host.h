#pragma once

#include <memory>

#include "platform/host.h"

namespace keyvora::tools {

/// Makes the host that gives a command access to running programs; null when the program was built without
/// one.
using HostMaker = std::unique_ptr<platform::Host> (*)();

/// The host maker of this build.
HostMaker builtHost();

/// The host, made on first access and only once. Copies share it. Main thread.
class HostOnce {
 public:
  HostOnce(HostMaker make = nullptr) : made_(std::make_shared<Made>(Made{make, nullptr})) {}

  /// Null when the program was built without one.
  [[nodiscard]] platform::Host* get() const {
    if (made_->host == nullptr && made_->make != nullptr) made_->host = made_->make();
    return made_->host.get();
  }

 private:
  struct Made {
    HostMaker make;
    std::unique_ptr<platform::Host> host;
  };
  std::shared_ptr<Made> made_;
};

}  // namespace keyvora::tools
