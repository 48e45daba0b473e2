#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "hosts/simulated/main_loop.h"
#include "platform/key_code.h"
#include "platform/keyboard.h"

namespace keyvora::simulated {

/// The keyboard, its user, and the taps on it. An event posted at the hardware level reaches the program's
/// own taps on the main loop, at the next `advance`, as on macOS.
class Keyboard final : public platform::Keyboard {
 public:
  Keyboard(World& world, MainLoop& loop);
  ~Keyboard() override;

  /// One event of the user. The enabled taps get it, the newest first, until one swallows it. A
  /// tap-disabled type disables the taps and is then delivered to each of them.
  platform::Verdict send(const platform::KeyEvent& event);

  /// A key pressed and released; the verdict on the press.
  platform::Verdict type(std::uint16_t keyCode, std::uint64_t flags = 0);

  /// A modifier key goes down or up; `flags` are the flags after that.
  platform::Verdict changeFlags(std::uint16_t keyCode, std::uint64_t flags);

  /// The Option key (by default the left one) pressed and released with nothing in between.
  void tapOption(std::uint16_t keyCode = platform::key_code::leftOption);

  /// How many taps exist, enabled or not.
  [[nodiscard]] std::size_t tapCount() const { return taps_->size(); }

  /// Whether a tap exists and all taps are enabled.
  [[nodiscard]] bool tapsEnabled() const;

  /// The layouts that exist, by name; at first the host knows none.
  std::map<std::string, platform::KeyboardLayout> layouts;

  std::unique_ptr<platform::EventTap> createTap(std::uint64_t eventMask,
                                                platform::TapHandler handler) override;
  std::unique_ptr<platform::EventSource> createSource() override;
  std::unique_ptr<platform::SyntheticEvent> createEvent(const platform::EventSource* source,
                                                        std::uint16_t keyCode, bool down) override;
  std::optional<platform::KeyboardLayout> layout(const std::string& name) override;
  std::vector<std::string> commonLayouts() override;

 private:
  struct Tap;
  class TapHandle;
  class Source;
  class Event;
  using Taps = std::vector<std::shared_ptr<Tap>>;

  void post(const platform::KeyEvent& event);

  World& world_;
  MainLoop& loop_;
  /// The oldest first. Shared with the handles, which may outlive the keyboard.
  std::shared_ptr<Taps> taps_;
};

}  // namespace keyvora::simulated
