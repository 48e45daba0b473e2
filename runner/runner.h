#pragma once

#include <memory>
#include <string>
#include <vector>

namespace keyvora {

class OwnEventSource;

/// Carries out actions against the target application. Each operation ends with one line in the log that
/// starts with `name`, its label, and fails in no other way. Main thread. The operations are virtual so that
/// a test can watch what the tap asks for.
class Runner {
 public:
  static Runner& shared();

  Runner();
  virtual ~Runner();
  Runner(const Runner&) = delete;
  Runner& operator=(const Runner&) = delete;

  /// Types the characters of `keys` into the target behind a Shift-and-Option lead-in. Returns at once: the
  /// typing happens on a background queue, alongside any that is still under way.
  virtual void sendKeyTips(const std::string& keys, const std::string& name);

  /// Presses one key of the key-code table once, with the modifiers that it knows among `modifiers`. Events
  /// that cannot be made end it without a word.
  virtual void sendKeystroke(const std::string& key, const std::vector<std::string>& modifiers,
                             const std::string& name);

  /// The whole script that a fragment of a document becomes.
  static std::string scriptFor(const std::string& fragment);

  /// Runs a fragment of AppleScript inside a tell block for the target and waits for its end.
  virtual void runAppleScript(const std::string& script, const std::string& name);

  /// Presses the target's menu item with this path of titles, from the menu bar down. Titles match when they
  /// are canonically equivalent, not otherwise.
  virtual void clickMenu(const std::vector<std::string>& path, const std::string& name);

 private:
  /// Shared with the typing that is under way, which may outlive the runner.
  std::shared_ptr<OwnEventSource> source_;
};

}  // namespace keyvora
