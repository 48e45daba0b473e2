#pragma once

#include <bitset>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "hosts/x11/applications/window_list.h"
#include "hosts/x11/display.h"
#include "hosts/x11/keyboard/key_map.h"
#include "hosts/x11/tap/key_grabs.h"
#include "hosts/x11/tap/key_reader.h"
#include "hosts/x11/tap/tap_end.h"

namespace keyvora::x11 {

/// The tap's program, on one thread and connection. It decides nothing: it passes key events to its
/// owner, waits for verdicts while the server keeps the keyboard frozen, and thaws the keyboard when a
/// verdict takes too long. Only the connection that grabbed a frozen keyboard can thaw it, so the grabs
/// are in a small process of their own, which waits for nothing else.
///
/// Which keys are grabbed: while the handler cannot be waiting for a letter, only the Option keys, so that
/// ordinary typing is not delayed. From an Option press on, every key. The grabs change before that press
/// goes on to its window, so that even the fastest letter after it is caught. The handler does not report
/// when it stops waiting, and need not: after an Option tap it swallows letters as long as it waits for
/// one. So the first key press that it lets pass with no Option key down, not counting the program's own
/// events, shows that it has stopped waiting. The keyboard is still frozen by that press while the grabs
/// change, so no key is missed. When a sequence ends in another way (it fires, or times out), one more key
/// is examined. A press that no grab could catch has no key code and ends the examination too. After a
/// time-out the handler may be in any state, so every key is grabbed.
///
/// While only the Option keys are grabbed, the reader rests as soon as no modifier key is down: no typing
/// reaches this process, from any window, until the next Option press in the target.
class Tap : private KeyListener {
 public:
  using Clock = TapEnd::Clock;

  /// Connects, with the tap disabled. Null when the display lacks something, another tap is running, or
  /// another program has grabbed the target's keys. The owner's end must outlive the tap.
  static std::unique_ptr<Tap> open(const std::string& displayName, TapEnd& owner);

  /// Releases all grabs; a held key goes to its window.
  ~Tap() override;
  Tap(const Tap&) = delete;
  Tap& operator=(const Tap&) = delete;

  /// Repeats the steps below until the owner has closed its end.
  void run();

  /// Carries out the owner's requests.
  void heedOwner();

  /// Reads the server's events.
  void readEvents();

  /// Ends the repetition of a key that is held for long, and gives up an owner that takes too long.
  void keepTime(Clock::time_point now);

  /// Readable when the server has sent something.
  [[nodiscard]] int fileDescriptor() const { return connection_->fileDescriptor(); }

 private:
  Tap(std::unique_ptr<Connection> connection, int opcode, KeyDevices devices, TapEnd& owner);

  [[nodiscard]] bool mayBeHeld(unsigned keycode) const override;
  void keyRead(const ReadKey& key) override;

  bool claim();
  void enable();
  void notice(XEvent& event);
  void letGo(platform::Verdict verdict);
  void passed(const platform::KeyEvent& event);
  void follow(KeyGrabs::Extent extent);
  [[nodiscard]] std::vector<Window> targetWindows() const;
  void wait();

  std::unique_ptr<Connection> connection_;
  int opcode_;
  TapEnd& owner_;
  KeyMap keys_;
  WindowList windows_;
  KeyGrabs grabs_;
  KeyReader reader_;

  bool enabled_ = false;
  bool mayBeArmed_ = false;
  std::optional<ReadKey> held_;
  /// When the repetition of the held key must be stopped; none when it was, or the key does not repeat.
  std::optional<Clock::time_point> repeatEnd_;
  /// The keys that were swallowed and are still down, by keycode.
  std::bitset<256> swallowed_;
};

}  // namespace keyvora::x11
