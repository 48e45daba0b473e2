#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "hosts/x11/applications/target_window.h"
#include "hosts/x11/glib_source.h"
#include "hosts/x11/keyboard/tap_process.h"
#include "platform/keyboard.h"

namespace keyvora::x11 {

class CurrentTap;

/// The main thread's side of the tap: shows the handler what the tap's program hands over, keeps the window
/// of what it swallows, and starts a new program when that one has ended, at most once a second. Main thread.
class EventTap : public platform::EventTap {
 public:
  /// Hears of faults, a sentence each.
  using Report = std::function<void(const std::string&)>;

  /// `process` was started by `command` and is now the `current` tap.
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
  /// The timer of the next start; 0 for none.
  unsigned nextStart_ = 0;
};

}  // namespace keyvora::x11
