#pragma once

#include <cstdint>
#include <memory>
#include <mutex>

namespace keyvora::x11 {

struct OwnMark;
class OwnerEnd;

/// Proof that no key of the user is held for a verdict. Only `CurrentTap::letGo` creates one, and every
/// function that acts on the target takes one, so that none can be called with the keyboard frozen.
class KeyboardIsFree {
 private:
  friend class CurrentTap;
  KeyboardIsFree() = default;
};

/// The host's current tap, if any, for the code that acts on the target. Outlives that code.
class CurrentTap {
 public:
  /// Makes this the current tap, as long as it exists. Any thread.
  void set(std::weak_ptr<OwnerEnd> tap);

  /// Thaws the keyboard before the program acts. While a key waits for the tap's verdict the server keeps
  /// the keyboard frozen, and an application cannot grab it for a menu or a dialog.
  ///
  /// - On the main thread, inside the tap's handler: the key being decided is swallowed now, whatever the
  ///   handler returns later, since an action only follows a swallowed key. A key typed after it stays
  ///   frozen until the handler gets it, unless the action takes longer than the limit for a verdict.
  /// - On the main thread, outside the handler: a key that waits for the handler goes to its window.
  /// - On any other thread: waits until the main thread has decided, at most one second.
  ///
  /// Returns when the server has thawed the keyboard; at once when nothing is pending or there is no tap.
  KeyboardIsFree letGo();

  /// Injects a key, given by its X keycode, with XTEST from the tap's connection. The tap recognises the
  /// event and gives it `mark`. False, with nothing done, when there is no tap. Any thread.
  bool inject(std::uint8_t keycode, bool down, const OwnMark& mark);

 private:
  std::shared_ptr<OwnerEnd> tap();

  std::mutex mutex_;
  std::weak_ptr<OwnerEnd> tap_;
};

}  // namespace keyvora::x11
