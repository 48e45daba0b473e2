#include "hosts/x11/keyboard/event_tap.h"

#include <glib.h>

#include <utility>

#include "hosts/x11/keyboard/current_tap.h"

namespace keyvora::x11 {
namespace {

using platform::KeyEvent;
using platform::Verdict;

/// The time between two starts.
constexpr std::chrono::milliseconds restartInterval{1000};

}  // namespace

EventTap::EventTap(std::unique_ptr<TapProcess> process, TapCommand command, CurrentTap& current,
                   TargetWindow& target, std::uint64_t eventMask, platform::TapHandler handler, Report report)
    : process_(std::move(process)),
      command_(std::move(command)),
      current_(current),
      target_(target),
      eventMask_(eventMask),
      handler_(std::move(handler)),
      report_(std::move(report)) {
  attach();
}

EventTap::~EventTap() {
  if (nextStart_ != 0) g_source_remove(nextStart_);
}

void EventTap::enable() {
  if (process_) {
    process_->end()->enable();
  } else {
    restart();
  }
}

// With a higher priority than timers and drawing, since the user's keyboard waits. The default context also
// runs while a menu of keyvora is open.
void EventTap::attach() {
  const auto& end = *process_->end();
  said_.emplace(end.fileDescriptor(), G_PRIORITY_HIGH, [this] { showEvents(); });
  received_.emplace(end.toMain().fileDescriptor(), G_PRIORITY_HIGH, [this] { showEvents(); });
  current_.set(process_->end());
}

void EventTap::showEvents() {
  auto& end = *process_->end();
  end.toMain().clear();
  while (const auto event = end.next(Clock::now())) {
    // The handler may start an action, which needs the window.
    const auto before = target_.get();
    if (const auto window = end.window(); window != 0) target_.set(window);
    const auto verdict = show(*event);
    if (verdict != Verdict::swallow) target_.set(before);
    end.handled(verdict);
  }
  if (end.ended()) lost();
}

Verdict EventTap::show(const KeyEvent& event) {
  const bool isNotice = event.type >= platform::event_type::tapDisabledByTimeout;
  const bool wanted = isNotice || (eventMask_ >> event.type & 1U) != 0;
  return wanted ? handler_(event) : Verdict::pass;
}

void EventTap::lost() {
  said_.reset();
  received_.reset();
  current_.set({});
  report_("The keyboard's program " + process_->stop() + "; another one is started.");
  process_.reset();
  handler_({.type = platform::event_type::tapDisabledByTimeout});
}

void EventTap::restart() {
  if (nextStart_ != 0) return;
  std::string problem;
  if (Clock::now() - started_ >= restartInterval) {
    started_ = Clock::now();
    process_ = TapProcess::start(command_, problem);
  }
  if (process_) {
    attach();
    process_->end()->enable();
    return;
  }
  const auto again = [](gpointer tap) -> gboolean {
    static_cast<EventTap*>(tap)->nextStart_ = 0;
    static_cast<EventTap*>(tap)->restart();
    return G_SOURCE_REMOVE;
  };
  nextStart_ = g_timeout_add(unsigned(restartInterval.count()), again, this);
}

}  // namespace keyvora::x11
