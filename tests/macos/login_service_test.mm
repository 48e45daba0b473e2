#import "hosts/macos/login_service.h"

#import <ServiceManagement/ServiceManagement.h>
#include <gtest/gtest.h>

namespace keyvora::macos {
namespace {

using platform::LoginStatus;

TEST(LoginService, TheDoorsStatesAreTheSystems) {
  EXPECT_EQ(static_cast<NSInteger>(LoginStatus::notRegistered), SMAppServiceStatusNotRegistered);
  EXPECT_EQ(static_cast<NSInteger>(LoginStatus::enabled), SMAppServiceStatusEnabled);
  EXPECT_EQ(static_cast<NSInteger>(LoginStatus::requiresApproval), SMAppServiceStatusRequiresApproval);
  EXPECT_EQ(static_cast<NSInteger>(LoginStatus::notFound), SMAppServiceStatusNotFound);
}

TEST(LoginService, TheStateIsTheMainApplications) {
  LoginService service;
  EXPECT_EQ(static_cast<NSInteger>(service.status()), SMAppService.mainAppService.status);
}

}  // namespace
}  // namespace keyvora::macos
