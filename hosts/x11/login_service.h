#pragma once

#include <filesystem>

#include "platform/login_service.h"

namespace keyvora::x11 {

/// Launch at login by an entry in the user's autostart directory (freedesktop.org's Desktop Application
/// Autostart Specification). Reads the file at each call, because the user may change it too.
class LoginService final : public platform::LoginService {
 public:
  /// `executable` is the program that the entry starts.
  explicit LoginService(std::filesystem::path executable) : executable_(std::move(executable)) {}

  platform::LoginStatus status() override;
  std::optional<std::string> registerProgram() override;
  std::optional<std::string> unregisterProgram() override;

 private:
  std::filesystem::path executable_;
};

}  // namespace keyvora::x11
