#pragma once

#include <memory>
#include <string>
#include <vector>

namespace keyvora {

class OwnEventSource;

/// Carries out actions against the target application. Each operation writes one log line at its end that
/// starts with `name`, its label; this is the only report of a failure. Main thread. The operations are
/// virtual so that a test can record the tap's calls.
class Runner {
 public:
  static Runner& shared();

  Runner();
  virtual ~Runner();
  Runner(const Runner&) = delete;
  Runner& operator=(const Runner&) = delete;

  /// Types the characters of `keys` into the target after a Shift-and-Option lead-in. Returns at once: the
  /// typing runs on a background queue, in parallel with any typing that has not ended.
  virtual void sendKeyTips(const std::string& keys, const std::string& name);

  /// Presses one key of the key-code table once, with those of `modifiers` that are known. When an event
  /// cannot be made, it ends without a log line.
  virtual void sendKeystroke(const std::string& key, const std::vector<std::string>& modifiers,
                             const std::string& name);

  /// The complete script made from a fragment of a document.
  static std::string scriptFor(const std::string& fragment);

  /// Runs a fragment of AppleScript inside a tell block for the target and waits for its end.
  virtual void runAppleScript(const std::string& script, const std::string& name);

  /// Presses the target's menu item with this path of titles, from the menu bar down. Titles are compared
  /// by canonical equivalence.
  virtual void clickMenu(const std::vector<std::string>& path, const std::string& name);

 private:
  /// Shared with typing that has not ended, which may outlive the runner.
  std::shared_ptr<OwnEventSource> source_;
};

}  // namespace keyvora
