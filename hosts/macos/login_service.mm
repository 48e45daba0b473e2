#import "hosts/macos/login_service.h"

#import <ServiceManagement/ServiceManagement.h>

#include "hosts/macos/strings.h"

namespace keyvora::macos {

platform::LoginStatus LoginService::status() {
  @autoreleasepool {
    return static_cast<platform::LoginStatus>(SMAppService.mainAppService.status);
  }
}

std::optional<std::string> LoginService::registerProgram() {
  @autoreleasepool {
    NSError* error = nil;
    if ([SMAppService.mainAppService registerAndReturnError:&error]) return std::nullopt;
    return utf8(error.localizedDescription);
  }
}

std::optional<std::string> LoginService::unregisterProgram() {
  @autoreleasepool {
    NSError* error = nil;
    if ([SMAppService.mainAppService unregisterAndReturnError:&error]) return std::nullopt;
    return utf8(error.localizedDescription);
  }
}

}  // namespace keyvora::macos
