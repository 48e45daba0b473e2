#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "hosts/x11/applications/target_window.h"
#include "hosts/x11/keyboard/tap_process.h"
#include "hosts/x11/loop/glib_source.h"
#include "platform/keyboard.h"

namespace keyvora::x11 {

class CurrentTap;

/// The tap on the main thread: calls the handler with the events of the tap's program, records the window
/// of swallowed keys, and restarts the program when it has ended, at most once a second. Main thread.
class EventTap : public platform::EventTap {
 public:
  /// Called with a fault, as one sentence.
  using Report = std::function<void(const std::string&)>;

  /// `process` was started with `command` and is already the `current` tap.
  EventTap(std::unique_ptr<TapProcess> process, TapCommand command, CurrentTap& current, TargetWindow& target,
           std::uint64_t eventMask, platform::TapHandler handler, Report report);
  ~EventTap() override;
  EventTap(const EventTap&) = delete;
  EventTap& operator=(const EventTap&) = delete;

  void enable() override;

 private:
  using Clock = OwnerEnd::Clock;

  void attach();
  void showEvents();
  platform::Verdict show(const platform::KeyEvent& event);
  void lost();
  void restart();

  std::unique_ptr<TapProcess> process_;
  TapCommand command_;
  CurrentTap& current_;
  TargetWindow& target_;
  std::uint64_t eventMask_;
  platform::TapHandler handler_;
  Report report_;
  std::optional<ReadableSource> said_;
  std::optional<ReadableSource> received_;
  Clock::time_point started_ = Clock::now();
  /// The timer for the next start; 0 for none.
  unsigned nextStart_ = 0;
};

}  // namespace keyvora::x11
