#include "system/login_item.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "hosts/simulated/host.h"

namespace keyvora {
namespace {

using platform::LoginStatus;
using simulated::Call;
using simulated::trace::LoginChanged;
using testing::ElementsAre;
using testing::IsEmpty;

class LoginItemTest : public testing::Test {
 protected:
  simulated::Host host;
  platform::Scope scope{host.platform()};
};

TEST_F(LoginItemTest, RegistersWithoutAWord) {
  LoginItem::set(true);
  EXPECT_EQ(host.loginService.state, LoginStatus::enabled);
  EXPECT_THAT(host.trace.logged(), IsEmpty());
}

TEST_F(LoginItemTest, TakesTheRegistrationBackWithoutAWord) {
  host.loginService.state = LoginStatus::enabled;
  LoginItem::set(false);
  EXPECT_EQ(host.loginService.state, LoginStatus::notRegistered);
  EXPECT_THAT(host.trace.logged(), IsEmpty());
}

TEST_F(LoginItemTest, ARefusedRegistrationIsOneLine) {
  host.failures.always(Call::registerProgram);
  LoginItem::set(true);
  EXPECT_EQ(host.loginService.state, LoginStatus::notRegistered);
  EXPECT_THAT(host.trace.logged(), ElementsAre("login item register failed: Operation not permitted"));
}

TEST_F(LoginItemTest, ARefusedRemovalIsOneLine) {
  host.loginService.state = LoginStatus::enabled;
  host.loginService.error = "The item could not be removed.";
  host.failures.always(Call::unregisterProgram);
  LoginItem::set(false);
  EXPECT_EQ(host.loginService.state, LoginStatus::enabled);
  EXPECT_THAT(host.trace.logged(),
              ElementsAre("login item unregister failed: The item could not be removed."));
}

TEST_F(LoginItemTest, DoesWhatItIsToldWhateverTheStatus) {
  host.loginService.state = LoginStatus::enabled;
  LoginItem::set(true);
  EXPECT_THAT(host.trace.of<LoginChanged>(), ElementsAre(LoginChanged{true}));
}

}  // namespace
}  // namespace keyvora
