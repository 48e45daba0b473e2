#include <array>
#include <chrono>

#include "log/log.h"
#include "platform/key_code.h"
#include "platform/platform.h"
#include "runner/excel.h"
#include "runner/key_plan.h"
#include "runner/outcome.h"
#include "runner/own_event_source.h"
#include "runner/posting.h"
#include "runner/runner.h"

namespace keyvora {
namespace {

using namespace std::chrono_literals;
using std::chrono::microseconds;

/// The target needs this time to show its key tips.
constexpr microseconds pauseAfterLeadIn = 150ms;
constexpr microseconds pauseAfterCharacter = 80ms;

struct ModifierChange {
  std::uint16_t keyCode;
  bool down;
  std::uint64_t flags;
};

/// Shift and Option pressed and released: the target then shows its key tips.
constexpr std::array<ModifierChange, 4> leadIn{{
    {platform::key_code::leftShift, true, platform::event_flag::shift},
    {platform::key_code::leftOption, true, platform::event_flag::shift | platform::event_flag::option},
    {platform::key_code::leftOption, false, platform::event_flag::shift},
    {platform::key_code::leftShift, false, 0},
}};

/// The typing of one action's key tips. Used by one background thread.
class Typing {
 public:
  Typing(std::shared_ptr<OwnEventSource> source, std::optional<platform::ProcessIdentifier> target)
      : source_(std::move(source)), target_(target) {}

  microseconds typeLeadIn() {
    for (const auto& change : leadIn) {
      const auto event =
          platform::current().keyboard.createEvent(source_->get(), change.keyCode, change.down);
      if (!event) continue;
      event->setType(platform::event_type::flagsChanged);
      event->setFlags(change.flags);
      post(*event, target_);
    }
    return pauseAfterLeadIn;
  }

  microseconds typeCharacter(std::uint16_t keyCode) {
    const auto press = makeKeyPress(source_->get(), keyCode);
    if (!press) return 0us;
    post(*press->down, target_);
    post(*press->up, target_);
    return pauseAfterCharacter;
  }

 private:
  std::shared_ptr<OwnEventSource> source_;
  std::optional<platform::ProcessIdentifier> target_;
};

}  // namespace

void Runner::sendKeyTips(const std::string& keys, const std::string& name) {
  const auto target = Excel::app();
  const auto plan = keyPlan(keys);
  if (const auto character = firstWithoutKey(plan)) return Log::line(outcome::noKeyCode(name, *character));

  const auto typing = std::make_shared<Typing>(source_, target);
  platform::Plan steps;
  steps.reserve(plan.size() + 2);
  steps.emplace_back([typing] { return typing->typeLeadIn(); });
  for (const auto& key : plan) {
    steps.emplace_back([typing, code = key.code] { return typing->typeCharacter(code); });
  }
  steps.emplace_back([keys, name] {
    Log::line(outcome::done(name, "keytips " + keys));
    return 0us;
  });
  platform::current().queues.walk(std::move(steps));
}

}  // namespace keyvora
