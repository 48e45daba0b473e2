#include "tap/key_sequence_tap.h"

#include <utility>

#include "log/log.h"
#include "mapping/mapping_store.h"
#include "platform/key_code.h"
#include "platform/platform.h"
#include "platform/shared.h"
#include "runner/excel.h"
#include "runner/own_event_marker.h"
#include "runner/runner.h"
#include "tap/perform.h"

namespace keyvora {
namespace {

namespace event_flag = platform::event_flag;
namespace event_type = platform::event_type;
namespace key_code = platform::key_code;
using platform::Verdict;

constexpr std::uint64_t eventMask =
    1U << event_type::keyDown | 1U << event_type::keyUp | 1U << event_type::flagsChanged;

std::string joined(const std::vector<std::string>& letters) {
  std::string text;
  for (const auto& letter : letters) text += letter;
  return text;
}

}  // namespace

KeySequenceTap& KeySequenceTap::shared() {
  return platform::shared<KeySequenceTap>([] {
    const auto mapping = []() -> const Mapping& { return MappingStore::shared().mapping(); };
    return std::make_unique<KeySequenceTap>(mapping, Runner::shared());
  });
}

KeySequenceTap::KeySequenceTap(MappingSource mapping, Runner& runner)
    : mapping_(std::move(mapping)), runner_(runner) {}

KeySequenceTap::~KeySequenceTap() = default;

bool KeySequenceTap::install() {
  auto tap = platform::current().keyboard.createTap(
      eventMask, [this](const platform::KeyEvent& event) { return handle(event.type, event); });
  if (!tap) return false;
  tap_ = std::move(tap);
  tap_->enable();
  installed_ = true;
  return true;
}

Verdict KeySequenceTap::handle(std::uint32_t type, const platform::KeyEvent& event) {
  if (type >= event_type::tapDisabledByTimeout) {
    if (tap_) tap_->enable();
    return Verdict::pass;
  }
  if (event.userData == ownEventMarker) return Verdict::pass;
  if (!Excel::isFrontmost()) {
    disarm();
    return Verdict::pass;
  }
  const bool optionHeld = (event.flags & event_flag::option) != 0;
  if (type == event_type::flagsChanged) {
    modifierChanged(event.keyCode, optionHeld);
    return Verdict::pass;
  }
  if (optionHeld) {
    optionDownAlone_ = false;
    return Verdict::pass;
  }
  // Key-ups always pass, including those of swallowed letters.
  if (type != event_type::keyDown || !armed_) return Verdict::pass;
  return keyTypedWhileArmed(event.keyCode);
}

void KeySequenceTap::modifierChanged(std::uint16_t keyCode, bool optionHeld) {
  if (!key_code::isOption(keyCode)) {
    optionDownAlone_ = false;
  } else if (optionHeld) {
    optionDownAlone_ = true;
  } else if (std::exchange(optionDownAlone_, false)) {
    if (armed_) {
      disarm();
    } else {
      arm();
    }
  }
}

Verdict KeySequenceTap::keyTypedWhileArmed(std::uint16_t keyCode) {
  if (keyCode == key_code::escape) {
    disarm();
    return Verdict::swallow;
  }
  const auto letter = letterFor(keyCode);
  if (!letter) {
    disarm();
    return Verdict::pass;
  }
  letterTyped(*letter);
  return Verdict::swallow;
}

void KeySequenceTap::letterTyped(char letter) {
  typed_.emplace_back(1, letter);
  report(true, joined(typed_));

  const auto& mapping = mapping_();
  const auto match = mapping.lookup(typed_);
  if (timer_) timer_->invalidate();
  if (match.isPrefixOfLonger) {
    scheduleTimeout(mapping, match.exact ? std::optional(*match.exact) : std::nullopt);
  } else if (match.exact) {
    fire(*match.exact);
  } else {
    Log::line("no sequence " + joined(typed_));
    disarm();
  }
}

void KeySequenceTap::scheduleTimeout(const Mapping& mapping, std::optional<Sequence> exact) {
  // The timer holds a copy, so that a reload meanwhile does not change what fires. The tap owns the timer,
  // so the block cannot outlive the tap. In the default mode, nothing fires while the user is in keyvora's
  // own menu.
  auto expired = [this, exact = std::move(exact)] {
    if (exact) {
      fire(*exact);
    } else {
      disarm();
    }
  };
  timer_ = platform::current().mainLoop.schedule(mapping.timeout(), false, platform::TimerMode::defaultMode,
                                                 std::move(expired));
}

void KeySequenceTap::arm() {
  armed_ = true;
  typed_.clear();
  report(true, "");
  Log::line("armed: Option tapped in Excel");
}

void KeySequenceTap::disarm() {
  armed_ = false;
  typed_.clear();
  if (timer_) timer_->invalidate();
  timer_.reset();
  report(false, "");
}

// By value: disarming destroys the timer that may hold the sequence, and the mapping may be reloaded while
// an action runs.
void KeySequenceTap::fire(Sequence sequence) {  // NOLINT(performance-unnecessary-value-param)
  disarm();
  perform(sequence, runner_);
}

void KeySequenceTap::report(bool armed, const std::string& text) const {
  if (onStateChange) onStateChange(armed, text);
}

}  // namespace keyvora
