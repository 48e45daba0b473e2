#include <gtest/gtest.h>  // before Xlib, whose macros conflict with it

#include "hosts/x11/instance.h"

#include <future>

#include "tests/x11/private_display.h"

namespace keyvora::x11 {
namespace {

constexpr std::chrono::milliseconds noPatience{0};

class InstanceTest : public testing::Test {
 protected:
  std::unique_ptr<Instance> claim(std::chrono::milliseconds patience) {
    return Instance::claim(display.name(), patience);
  }

  /// Whether another process waits for the end of the present instance.
  bool isAwaited() {
    const Window owner = XGetSelectionOwner(connection->get(), connection->atom("_KEYVORA_INSTANCE"));
    XWindowAttributes attributes{};
    return owner != None && XGetWindowAttributes(connection->get(), owner, &attributes) != 0 &&
           (attributes.all_event_masks & StructureNotifyMask) != 0;
  }

  PrivateDisplay display;
  std::unique_ptr<Connection> connection = Connection::open(display.name());
};

TEST_F(InstanceTest, ThereIsOneAtATime) {
  EXPECT_FALSE(Instance::isClaimed(*connection));
  auto first = claim(noPatience);
  EXPECT_NE(first, nullptr);
  EXPECT_TRUE(Instance::isClaimed(*connection));
  EXPECT_EQ(claim(noPatience), nullptr);
  first.reset();
  EXPECT_TRUE(runUntil([&] { return !Instance::isClaimed(*connection); }));
  EXPECT_NE(claim(noPatience), nullptr);
}

TEST_F(InstanceTest, OneThatEndsIsWaitedFor) {
  auto first = claim(noPatience);
  ASSERT_NE(first, nullptr);
  auto second = std::async(std::launch::async, [this] { return claim(patience); });
  EXPECT_TRUE(runUntil([this] { return isAwaited(); }));
  first.reset();
  EXPECT_NE(second.get(), nullptr);
}

TEST_F(InstanceTest, WithoutADisplayThereIsNone) {
  EXPECT_EQ(Instance::claim(":4711", noPatience), nullptr);
}

}  // namespace
}  // namespace keyvora::x11
