#pragma once

#include <memory>
#include <mutex>
#include <string>

#include "platform/keyboard.h"

namespace keyvora::x11 {

class CurrentTap;
class Poster;

/// The keyboard of an X session. Without a usable display there is no tap and no event.
class Keyboard : public platform::Keyboard {
 public:
  /// The display of this name, or the one that DISPLAY names when it is empty. Connects when first used. A
  /// tap that it makes becomes `currentTap`, which outlives the keyboard and its events.
  Keyboard(std::string displayName, CurrentTap& currentTap);
  ~Keyboard() override;

  /// The tap's events are dispatched by GLib's default main context, ahead of timers and drawing.
  std::unique_ptr<platform::EventTap> createTap(std::uint64_t eventMask,
                                                platform::TapHandler handler) override;
  std::unique_ptr<platform::EventSource> createSource() override;
  std::unique_ptr<platform::SyntheticEvent> createEvent(const platform::EventSource* source,
                                                        std::uint16_t keyCode, bool down) override;

 private:
  /// Connects on first use; null without a display. Any thread.
  std::shared_ptr<Poster> poster();

  std::string displayName_;
  CurrentTap& currentTap_;
  std::mutex posterMutex_;
  std::shared_ptr<Poster> poster_;
};

}  // namespace keyvora::x11
