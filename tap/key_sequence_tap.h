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
  /// Gives the mapping in force; asked anew at every letter.
  using MappingSource = std::function<const Mapping&()>;

  /// The process's tap, on the shared store and runner.
  static KeySequenceTap& shared();

  KeySequenceTap(MappingSource mapping, Runner& runner);
  ~KeySequenceTap();
  KeySequenceTap(const KeySequenceTap&) = delete;
  KeySequenceTap& operator=(const KeySequenceTap&) = delete;

  /// Creates and enables the event tap; false, with nothing changed, when the system refuses. Does not test
  /// `installed`: call it again only after a failure.
  bool install();

  /// Whether `install` has succeeded.
  [[nodiscard]] bool installed() const { return installed_; }

  /// Told of each change: whether the tap is armed, and the letters typed so far.
  std::function<void(bool armed, const std::string& text)> onStateChange;

  /// Decides one event. `type` is the event's own: it is looked at before anything else of it.
  platform::Verdict handle(std::uint32_t type, const platform::KeyEvent& event);

  /// The letter or digit that a key stands for by its place on the ANSI keyboard, or none.
  static std::optional<char> letterFor(std::uint16_t keyCode);

 private:
  void arm();
  void disarm();
  void fire(const Sequence& sequence);
  void flagsChanged(const platform::KeyEvent& event);
  void letterTyped(char letter);
  void scheduleTimeout(std::optional<Sequence> exact);
  void report(bool armed, const std::string& text) const;

  MappingSource mapping_;
  Runner& runner_;
  std::unique_ptr<platform::EventTap> tap_;
  bool installed_ = false;
  bool armed_ = false;
  std::vector<std::string> typed_;
  bool optionDownAlone_ = false;
  std::unique_ptr<platform::Timer> timer_;
};

}  // namespace keyvora
