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

/// What the tap's program does, on its one thread and connection. It decides nothing: it carries key events
/// to its owner, waits for verdicts while the server holds the keyboard, and lets go when one takes too long.
/// Only the connection that grabbed a frozen keyboard can free it, so it is in no process that may stand
/// still, and it never waits for anything else.
///
/// Which keys are grabbed. Ordinary typing is left alone: as long as the handler cannot be about to swallow,
/// only the Option keys are grabbed. From an Option press on every key is, before the press goes on to its
/// window, so that a letter typed however fast behind it is caught. The handler does not say when it is done,
/// and need not: a letter typed after an Option tap is swallowed as long as the handler waits for one, so the
/// first key press that it lets pass with no Option key down, not counting the program's own, proves that it
/// no longer waits. That press is still held back while the grabs change, so no key slips through. When a
/// sequence ends in another way (it fires, or its time runs out), one more key is examined. A press that no
/// grab could hold has no key code and ends the examination too. After a time-out the
/// handler may be in any state, and every key is grabbed.
///
/// While only the Option keys are grabbed the reader rests, as soon as no modifier key is down: nothing of
/// what is typed then reaches this process, in the target or elsewhere, until the next Option press in the
/// target.
class Tap : private KeyListener {
 public:
  using Clock = TapEnd::Clock;

  /// Connects, switched off; null when the display lacks something, another tap is there, or another program
  /// holds the target's keys. The owner's end outlives the tap.
  static std::unique_ptr<Tap> open(const std::string& displayName, TapEnd& owner);

  /// Lets go of everything; a key that is held back goes to its window.
  ~Tap() override;
  Tap(const Tap&) = delete;
  Tap& operator=(const Tap&) = delete;

  /// Works until the owner has closed its end: the steps below, again and again.
  void run();

  /// Does what the owner has said.
  void heedOwner();

  /// Reads what the server has said.
  void readEvents();

  /// Ends the repetition of a key that is held back for long, and gives up on an owner that takes too long.
  void keepTime(Clock::time_point now);

  /// Readable when the server has said something.
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
  /// When the held key is to stop repeating; none when it has, or repeats no more.
  std::optional<Clock::time_point> repeatEnd_;
  /// The keys that were swallowed and are still down, by the display's numbers.
  std::bitset<256> swallowed_;
};

}  // namespace keyvora::x11
