#pragma once

#include "platform/login_service.h"

namespace keyvora::macos {

/// The main application's login item, through ServiceManagement. Main thread.
class LoginService final : public platform::LoginService {
 public:
  platform::LoginStatus status() override;
  std::optional<std::string> registerProgram() override;
  std::optional<std::string> unregisterProgram() override;
};

}  // namespace keyvora::macos
