#include "hosts/x11/loop/loop_wait.h"

#include <glib.h>
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "hosts/x11/keyboard/wakeup.h"
#include "hosts/x11/loop/glib_source.h"
#include "hosts/x11/loop/main_loop.h"

namespace keyvora::x11 {
namespace {

using platform::Seconds;
using Names = std::vector<std::string>;

constexpr Seconds soon{0.02};

/// Longer than any test runs.
constexpr Seconds never{1e6};

/// Works from its construction on.
class TestWorker final : public LoopWait::Worker {
 public:
  /// `code` is what the worker runs, true when that is other code of the program.
  TestWorker(LoopWait& wait, std::function<bool()> code) : wait_(wait), code_(std::move(code)) {
    wait_.add(*this);
  }
  ~TestWorker() override { wait_.remove(*this); }
  TestWorker(const TestWorker&) = delete;
  TestWorker& operator=(const TestWorker&) = delete;

  [[nodiscard]] int descriptor() const override { return wakeup.fileDescriptor(); }
  [[nodiscard]] std::optional<LoopWait::Microseconds> due() const override { return moment; }

  bool work() override {
    moment.reset();
    if (!staysReadable) wakeup.clear();
    return code_();
  }

  Wakeup wakeup;
  std::optional<LoopWait::Microseconds> moment;
  bool staysReadable = false;

 private:
  LoopWait& wait_;
  std::function<bool()> code_;
};

class LoopWaitTest : public testing::Test {
 protected:
  std::function<void()> note(const std::string& name) {
    return [this, name] { happened.push_back(name); };
  }

  /// Code of a worker.
  std::function<bool()> noting(const std::string& name, bool isOtherCode = false) {
    return [this, name, isOtherCode] {
      happened.push_back(name);
      return isOtherCode;
    };
  }

  /// One turn, and the wait in it.
  static void turn() { g_main_context_iteration(nullptr, TRUE); }

  MainLoop loop;
  Names happened;
};

TEST_F(LoopWaitTest, WorkTakesNoTurn) {
  TestWorker worker(loop.wait(), noting("work"));
  worker.wakeup.signal();
  loop.after(soon, note("block"));
  turn();
  EXPECT_EQ(happened, (Names{"work", "block"}));
}

TEST_F(LoopWaitTest, WorkIsDoneWhenItIsDue) {
  TestWorker worker(loop.wait(), noting("work"));
  const auto due = g_get_monotonic_time() + 5'000;
  worker.moment = due;
  loop.after(2 * soon, note("block"));
  turn();
  EXPECT_EQ(happened, (Names{"work", "block"}));
  EXPECT_GE(g_get_monotonic_time(), due);
}

TEST_F(LoopWaitTest, OtherCodeMakesTheLoopTakeATurn) {
  TestWorker worker(loop.wait(), noting("work", true));
  worker.wakeup.signal();
  loop.after(never, note("block"));
  turn();
  EXPECT_EQ(happened, Names{"work"});
}

TEST_F(LoopWaitTest, OtherCodeThatLeftTheRestToABlockTakesNoTurnOfItsOwn) {
  TestWorker worker(loop.wait(), [this] {
    happened.emplace_back("work");
    loop.after(soon, note("block"));
    return true;
  });
  worker.wakeup.signal();
  turn();
  EXPECT_EQ(happened, (Names{"work", "block"}));
}

TEST_F(LoopWaitTest, AKeyIsNotHeldUpByWorkWithoutEnd) {
  TestWorker worker(loop.wait(), noting("work"));
  worker.staysReadable = true;
  worker.wakeup.signal();
  const Wakeup key;
  const ReadableSource keyboard(key.fileDescriptor(), G_PRIORITY_HIGH, [&] {
    key.clear();
    happened.emplace_back("key");
  });
  key.signal();
  turn();
  EXPECT_EQ(happened, (Names{"work", "key"}));
}

TEST_F(LoopWaitTest, ABlockFromAnotherThreadEndsTheWait) {
  TestWorker worker(loop.wait(), noting("work"));
  std::thread other([this] {
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    loop.after({}, note("block"));
  });
  while (happened.empty()) turn();
  EXPECT_EQ(happened, Names{"block"});
  other.join();
}

TEST_F(LoopWaitTest, WithoutTimeToWaitWorkIsDoneToo) {
  TestWorker worker(loop.wait(), noting("work"));
  worker.wakeup.signal();
  EXPECT_FALSE(g_main_context_iteration(nullptr, FALSE));
  EXPECT_EQ(happened, Names{"work"});
}

TEST_F(LoopWaitTest, ARemovedWorkerDoesNothing) {
  TestWorker worker(loop.wait(), noting("work"));
  worker.wakeup.signal();
  loop.wait().remove(worker);
  loop.after({}, note("block"));
  turn();
  EXPECT_EQ(happened, Names{"block"});
}

TEST_F(LoopWaitTest, WorkersMayComeAndGoWithTheWork) {
  TestWorker second(loop.wait(), noting("second"));
  loop.wait().remove(second);
  second.wakeup.signal();
  std::optional<TestWorker> first;
  first.emplace(loop.wait(), [&] {
    loop.wait().remove(*first);
    loop.wait().add(second);
    happened.emplace_back("first");
    return false;
  });
  first->wakeup.signal();
  loop.after(soon, note("block"));
  turn();
  EXPECT_EQ(happened, (Names{"first", "second", "block"}));
}

TEST_F(LoopWaitTest, OtherCodeMayRunTheLoop) {
  TestWorker inner(loop.wait(), noting("inner"));
  TestWorker outer(loop.wait(), [&] {
    inner.wakeup.signal();
    loop.after(soon, note("block"));
    turn();
    happened.emplace_back("outer");
    return true;
  });
  outer.wakeup.signal();
  loop.after(3 * soon, note("last"));
  while (happened.size() < 4) turn();
  EXPECT_EQ(happened, (Names{"inner", "block", "outer", "last"}));
}

TEST_F(LoopWaitTest, AYoungerLoopGivesTheWaitBack) {
  TestWorker worker(loop.wait(), noting("work"));
  worker.wakeup.signal();
  {
    const MainLoop younger;
    g_main_context_iteration(nullptr, FALSE);
    EXPECT_EQ(happened, Names{});
  }
  g_main_context_iteration(nullptr, FALSE);
  EXPECT_EQ(happened, Names{"work"});
}

}  // namespace
}  // namespace keyvora::x11
