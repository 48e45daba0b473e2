#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "mapping/mapping.h"
#include "platform/keyboard.h"
#include "platform/main_loop.h"

namespace keyvora {

class Runner;

/// The keyboard tap and the state machine behind it: arms on a lone Option tap in the target, swallows and
/// collects letters, waits on ambiguous sequences, fires the one that matches. Main thread only.
class KeySequenceTap {
 public:
  /// Returns the current mapping; called for every letter.
  using MappingSource = std::function<const Mapping&()>;

  /// The process's tap, on the shared store and runner.
  static KeySequenceTap& shared();

  KeySequenceTap(MappingSource mapping, Runner& runner);
  ~KeySequenceTap();
  KeySequenceTap(const KeySequenceTap&) = delete;
  KeySequenceTap& operator=(const KeySequenceTap&) = delete;

  /// Creates and enables the event tap; false, with nothing changed, when the system refuses. Does not
  /// check `installed`: call it again only after a failure.
  bool install();

  /// Whether `install` has succeeded.
  [[nodiscard]] bool installed() const { return installed_; }

  /// Called at each change: whether the tap is armed, and the letters typed so far. Called also, with
  /// `armed` false, at every event outside the target.
  std::function<void(bool armed, const std::string& text)> onStateChange;

  /// Decides one event. `type` is the event's own and is checked first. Allocates nothing outside an armed
  /// sequence.
  platform::Verdict handle(std::uint32_t type, const platform::KeyEvent& event);

  /// The letter (A to Z) or digit of a key on the main block of the ANSI keyboard, by its virtual key code;
  /// none for every other key. Depends on the key's place only, not on layout, Shift or Caps Lock.
  static std::optional<char> letterFor(std::uint16_t keyCode);

 private:
  void modifierChanged(std::uint16_t keyCode, bool optionHeld);
  platform::Verdict keyTypedWhileArmed(std::uint16_t keyCode);
  void letterTyped(char letter);
  void scheduleTimeout(const Mapping& mapping, std::optional<Sequence> exact);

  void arm();
  void disarm();
  void fire(Sequence sequence);
  void report(bool armed, const std::string& text) const;

  MappingSource mapping_;
  Runner& runner_;
  std::unique_ptr<platform::EventTap> tap_;
  bool installed_ = false;
  /// Between a lone Option tap and the end of the sequence.
  bool armed_ = false;
  /// The letters since arming, in typing order.
  std::vector<std::string> typed_;
  /// An Option key is held and nothing else has happened since it went down.
  bool optionDownAlone_ = false;
  /// The timer for an ambiguous sequence; may be one that a later letter has invalidated.
  std::unique_ptr<platform::Timer> timer_;
};

}  // namespace keyvora
