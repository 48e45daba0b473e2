#include "system/login_item.h"

#include <optional>
#include <string>

#include "log/log.h"
#include "platform/platform.h"

namespace keyvora {

void LoginItem::set(bool launchAtLogin) {
  auto& service = platform::current().loginService;
  const std::optional<std::string> failure =
      launchAtLogin ? service.registerProgram() : service.unregisterProgram();
  if (!failure) return;
  const std::string operation = launchAtLogin ? "register" : "unregister";
  Log::line("login item " + operation + " failed: " + *failure);
}

}  // namespace keyvora
