#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <string>

#include "hosts/x11/applications/target_window.h"
#include "hosts/x11/keyboard/tap_process.h"
#include "platform/keyboard.h"

namespace keyvora::x11 {

class CurrentTap;
class Poster;

/// The keyboard of an X session. Without a usable display there is no tap and no event.
class Keyboard : public platform::Keyboard {
 public:
  /// The display of this name, or the one that DISPLAY names when it is empty. Connects on first use. Its
  /// tap runs `tapProgram`, becomes `currentTap`, and sets `target` to the window that swallowed keys were
  /// meant for; synthetic keys are posted there. Both must outlive the keyboard and its events.
  Keyboard(std::string displayName, std::filesystem::path tapProgram, CurrentTap& currentTap,
           TargetWindow& target);
  ~Keyboard() override;

  /// GLib's default main context dispatches the tap's events, before timers and drawing.
  std::unique_ptr<platform::EventTap> createTap(std::uint64_t eventMask,
                                                platform::TapHandler handler) override;
  std::unique_ptr<platform::EventSource> createSource() override;
  std::unique_ptr<platform::SyntheticEvent> createEvent(const platform::EventSource* source,
                                                        std::uint16_t keyCode, bool down) override;
  void onFault(const std::function<void(const std::string& sentence)>& report) override;
  std::optional<platform::KeyboardLayout> layout(const std::string& name) override;
  std::vector<std::string> commonLayouts() override;

 private:
  /// Connects on first use; null without a display. Any thread.
  std::shared_ptr<Poster> poster();

  void report(const std::string& sentence);

  TapCommand tapCommand_;
  CurrentTap& currentTap_;
  TargetWindow& target_;
  std::function<void(const std::string&)> report_;
  /// The reason why the last attempt to make a tap failed.
  std::string problem_;
  std::mutex posterMutex_;
  std::shared_ptr<Poster> poster_;
};

}  // namespace keyvora::x11
