#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "platform/keyboard.h"

namespace keyvora {

/// Carries out actions against the target application. Each operation writes one outcome line to the log that
/// starts with `name`, its label, and fails in no other way. Main thread. The operations are virtual so that
/// a test can watch what the tap asks for.
class Runner {
 public:
  static Runner& shared();

  Runner() = default;
  virtual ~Runner() = default;
  Runner(const Runner&) = delete;
  Runner& operator=(const Runner&) = delete;

  /// Types the characters of `keys` into the target behind a Shift-and-Option lead-in. Returns at once: the
  /// typing happens on a background queue.
  virtual void sendKeyTips(const std::string& keys, const std::string& name);

  /// Presses one key of the key-code table once, with the modifiers that it knows among `modifiers`.
  virtual void sendKeystroke(const std::string& key, const std::vector<std::string>& modifiers,
                             const std::string& name);

  /// Runs a fragment of AppleScript inside a tell block for the target and waits for its end.
  virtual void runAppleScript(const std::string& script, const std::string& name);

  /// Presses the target's menu item with this path of titles, from the menu bar down.
  virtual void clickMenu(const std::vector<std::string>& path, const std::string& name);

 private:
  /// The source of our events, made on first use and kept; null when it could not be made. Any thread.
  const platform::EventSource* source();

  std::once_flag sourceMade_;
  std::unique_ptr<platform::EventSource> source_;
};

}  // namespace keyvora
