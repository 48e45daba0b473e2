#pragma once

#include <cstdint>
#include <memory>
#include <mutex>

namespace keyvora::x11 {

struct OwnMark;
class OwnerEnd;

/// Says that no key of the user's was held back for a verdict just now. Only `CurrentTap::letGo` makes one,
/// and every way of acting on the target takes one: none can be used without letting the keyboard go first.
class KeyboardIsFree {
 private:
  friend class CurrentTap;
  KeyboardIsFree() = default;
};

/// The current tap of this host, if any, as those who act on the target need it. Outlives all of them.
class CurrentTap {
 public:
  /// From now on this one, for as long as it exists. Any thread.
  void set(std::weak_ptr<OwnerEnd> tap);

  /// Lets the keyboard go before the program acts. While a key waits for the tap's verdict the server holds
  /// the keyboard back, and an application that wants to open a menu or a dialog just then cannot take it.
  ///
  /// - On the main thread, inside the tap's handler: the key being decided is swallowed now, whatever the
  ///   handler returns later, since an action only ever follows a swallowed key. A key typed after that one
  ///   waits for its turn, unless the action takes longer than a verdict may.
  /// - On the main thread, outside it: a key that waits to be shown to the handler goes to its window
  /// instead.
  /// - On any other thread: waits until the main thread has decided, one second at the most.
  ///
  /// Returns when the server has let the keyboard go; at once when nothing is pending or there is no tap.
  KeyboardIsFree letGo();

  /// Injects a key, by the display's number, with XTEST from the tap's connection, which is how the tap knows
  /// it again by `mark`. False, with nothing done, when there is no tap. Any thread.
  bool inject(std::uint8_t keycode, bool down, const OwnMark& mark);

 private:
  std::shared_ptr<OwnerEnd> tap();

  std::mutex mutex_;
  std::weak_ptr<OwnerEnd> tap_;
};

}  // namespace keyvora::x11
