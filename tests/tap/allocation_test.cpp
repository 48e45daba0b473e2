#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <new>

#include "tests/tap/expectations.h"
#include "tests/tap/tap_rig.h"

namespace {
thread_local std::size_t allocations = 0;
}  // namespace

// Counts every allocation of the program: the other forms of `new` call these two. Sanitizers replace the
// non-throwing form separately, so it is replaced here too.
void* operator new(std::size_t size) {
  ++allocations;
  if (void* memory = std::malloc(size == 0 ? 1 : size)) return memory;
  throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t& /*unused*/) noexcept {
  ++allocations;
  return std::malloc(size == 0 ? 1 : size);
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
// Clang declares this one only where it would call it itself.
void operator delete(void* memory, std::size_t) noexcept;
void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}

namespace keyvora::testing {
namespace {

using platform::KeyEvent;
using platform::Verdict;
using namespace platform::event_flag;
using namespace platform::event_type;

template <class Work>
std::size_t allocationsDuring(Work work) {
  const auto before = allocations;
  work();
  return allocations - before;
}

const std::array<KeyEvent, 8> idleEvents{{
    {keyDown, key::h, 0, 0},
    {keyUp, key::h, 0, 0},
    {keyDown, key::escape, shift, 0},
    {keyDown, key::h, option, 0},
    {flagsChanged, key::leftShift, shift, 0},
    {flagsChanged, key::leftOption, option, 0},
    {flagsChanged, key::leftCommand, option | command, 0},
    {flagsChanged, key::leftOption, 0, 0},
}};

class AllocationTest : public ::testing::Test {
 protected:
  void SetUp() override {
    rig.tap().onStateChange = [this](bool, const std::string&) { ++reports; };
  }

  std::size_t allocationsOfIdleEvents() {
    return allocationsDuring([this] {
      for (const auto& event : idleEvents) {
        if (rig.tap().handle(event.type, event) == Verdict::swallow) ++swallowed;
      }
    });
  }

  TapRig rig{mappingOf({"HF", "HFC"})};
  int reports = 0;
  int swallowed = 0;
};

TEST_F(AllocationTest, TheCounterCounts) {
  EXPECT_EQ(allocationsDuring([] { const std::vector<int> one(1); }), 1U);
}

TEST_F(AllocationTest, NoneForIdleEventsInTheTarget) {
  rig.host().applications.front = "com.microsoft.Excel";
  EXPECT_EQ(allocationsOfIdleEvents(), 0U);
  EXPECT_EQ(swallowed, 0);
}

TEST_F(AllocationTest, NoneForEventsElsewhere) {
  rig.host().applications.front = "com.apple.finder";
  EXPECT_EQ(allocationsOfIdleEvents(), 0U);
  EXPECT_EQ(reports, 8);
}

TEST_F(AllocationTest, NoneForOurOwnEvents) {
  rig.tapOption();
  const KeyEvent event{keyDown, key::h, 0, 0x5E7A91C3};
  EXPECT_EQ(allocationsDuring([&] { rig.tap().handle(event.type, event); }), 0U);
}

TEST_F(AllocationTest, NoneForALookupThatDoesNotFire) {
  const auto mapping =
      mappingOf({"h f", "HFC", "A much longer key sequence than any string keeps inside", "X1"});
  for (const auto& typed : {std::vector<std::string>{"H"}, {"H", "F"}, {"H", "F", "X"}, {"Q"}, {}}) {
    EXPECT_EQ(allocationsDuring([&] { static_cast<void>(mapping.lookup(typed)); }), 0U);
  }
}

}  // namespace
}  // namespace keyvora::testing
