#pragma once

#include <memory>
#include <vector>

#include "hosts/simulated/main_loop.h"
#include "platform/key_code.h"
#include "platform/keyboard.h"

namespace keyvora::simulated {

/// The keyboard, its user, and the taps on it. What is posted at the hardware level comes by our own taps on
/// the main loop, at the next `advance`, as on macOS.
class Keyboard final : public platform::Keyboard {
 public:
  Keyboard(World& world, MainLoop& loop);
  ~Keyboard() override;

  /// One event of the user's: shown to the taps that are on, the newest first; the first to swallow it ends
  /// its way. A tap-disabled type switches the taps off and then tells each of them.
  platform::Verdict send(const platform::KeyEvent& event);

  /// A key pressed and released; the verdict on the press.
  platform::Verdict type(std::uint16_t keyCode, std::uint64_t flags = 0);

  /// A modifier key that goes down or comes up; `flags` is what holds afterwards.
  platform::Verdict changeFlags(std::uint16_t keyCode, std::uint64_t flags);

  /// The Option key (the left one, unless told otherwise) pressed and released with nothing in between.
  void tapOption(std::uint16_t keyCode = platform::key_code::leftOption);

  /// How many taps exist, on or off.
  [[nodiscard]] std::size_t tapCount() const { return taps_->size(); }

  /// Whether a tap exists and all are on.
  [[nodiscard]] bool tapsEnabled() const;

  std::unique_ptr<platform::EventTap> createTap(std::uint64_t eventMask,
                                                platform::TapHandler handler) override;
  std::unique_ptr<platform::EventSource> createSource() override;
  std::unique_ptr<platform::SyntheticEvent> createEvent(const platform::EventSource* source,
                                                        std::uint16_t keyCode, bool down) override;

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
