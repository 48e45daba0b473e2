#pragma once

#include "hosts/simulated/world.h"
#include "platform/login_service.h"

namespace keyvora::simulated {

/// The registration as a login item; it follows the calls unless they are made to fail.
class LoginService final : public platform::LoginService {
 public:
  explicit LoginService(World& world) : world_(world) {}

  platform::LoginStatus state = platform::LoginStatus::notRegistered;

  /// The error of a call that is made to fail.
  std::string error = "Operation not permitted";

  platform::LoginStatus status() override {
    return world_.fails(Call::loginStatus) ? platform::LoginStatus::notFound : state;
  }

  std::optional<std::string> registerProgram() override {
    return change(true, world_.fails(Call::registerProgram));
  }

  std::optional<std::string> unregisterProgram() override {
    return change(false, world_.fails(Call::unregisterProgram));
  }

 private:
  std::optional<std::string> change(bool registered, bool fails) {
    world_.trace.add(trace::LoginChanged{registered});
    if (fails) return error;
    state = registered ? platform::LoginStatus::enabled : platform::LoginStatus::notRegistered;
    return std::nullopt;
  }

  World& world_;
};

}  // namespace keyvora::simulated
