#include "tests/macos/rig/recorders/login_item.h"

#import <ServiceManagement/ServiceManagement.h>

#include <atomic>

#include "tests/macos/rig/recorders/failures.h"
#include "tests/macos/rig/recorders/record.h"

namespace keyvora::rig {
namespace {
std::atomic<int> loginStatus = SMAppServiceStatusNotRegistered;
}

void setLoginStatus(int status) { loginStatus = status; }

}  // namespace keyvora::rig

using keyvora::rig::loginStatus;

@implementation SMAppService

+ (SMAppService*)mainAppService {
  static SMAppService* service = [[SMAppService alloc] init];
  return service;
}

- (SMAppServiceStatus)status {
  return static_cast<SMAppServiceStatus>(loginStatus.load());
}

- (BOOL)registerAndReturnError:(NSError**)error {
  return [self become:SMAppServiceStatusEnabled call:"register" error:error];
}

- (BOOL)unregisterAndReturnError:(NSError**)error {
  return [self become:SMAppServiceStatusNotRegistered call:"unregister" error:error];
}

- (BOOL)become:(SMAppServiceStatus)status call:(const char*)call error:(NSError**)error {
  keyvora::rig::requireMainThread("the login item");
  keyvora::rig::record("login item: %s", call);
  if (!keyvora::rig::fails("login item")) {
    loginStatus = static_cast<int>(status);
    return YES;
  }
  if (error != nullptr) {
    *error = [NSError errorWithDomain:@"SMAppServiceErrorDomain"
                                 code:1
                             userInfo:@{NSLocalizedDescriptionKey : @"Operation not permitted"}];
  }
  return NO;
}

@end
