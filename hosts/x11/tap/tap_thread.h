#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "hosts/x11/applications/window_list.h"
#include "hosts/x11/display.h"
#include "hosts/x11/keyboard/handover.h"
#include "hosts/x11/keyboard/key_map.h"
#include "hosts/x11/tap/key_grabs.h"
#include "hosts/x11/tap/key_reader.h"

namespace keyvora::x11 {

/// The tap's own thread and connection. It decides nothing: it carries key events to the main thread, waits
/// for verdicts while the server holds the keyboard, and lets go when one takes too long. Only the connection
/// that grabbed a frozen keyboard can free it, so this thread never waits for anything else.
///
/// Which keys are grabbed. Ordinary typing is left alone: as long as the handler cannot be about to swallow,
/// only the Option keys are grabbed. From an Option press on every key is, before the press goes on to its
/// window, so that a letter typed however fast behind it is caught. The handler does not say when it is done,
/// and need not: a letter typed after an Option tap is swallowed as long as the handler waits for one, so the
/// first key press that it lets pass with no Option key down, not counting the program's own, proves that it
/// waits no more. That press is then still held back, which makes the change seamless. A handler that ends
/// otherwise (a sequence fires, time runs out) costs one more key that is looked at. A press that no grab
/// could hold proves the same: it has no code, and nothing goes on with such a key. After a time-out the
/// handler may be in any state, and every key is grabbed.
///
/// While only the Option keys are grabbed the reader rests, as soon as no modifier key is down: nothing of
/// what is typed then reaches this process, in the target or elsewhere, until the next Option press in the
/// target.
class TapThread : private KeyListener {
 public:
  /// Starts the thread, with the tap switched off; null when the display lacks something, another tap is
  /// there, or another program holds the target's keys. Main thread.
  static std::shared_ptr<TapThread> start(const std::string& displayName);

  /// Ends the thread; a key that is held back goes to its window. Main thread.
  ~TapThread() override;
  TapThread(const TapThread&) = delete;
  TapThread& operator=(const TapThread&) = delete;

  /// Grabs, and waits until that is done, for a moment at the most. Any thread but the tap's own.
  void enable();

  /// Injects a key with XTEST from the tap's connection, which is how the tap knows it again. Any thread.
  void inject(KeyCode key, bool down, OwnMark mark);

  Handover& handover() { return handover_; }

 private:
  using Command = std::function<void()>;

  TapThread(std::unique_ptr<Connection> connection, int opcode, KeyDevices devices);

  [[nodiscard]] bool mayBeHeld(std::uint16_t keyCode) const override;
  void keyRead(const ReadKey& key) override;

  bool claim();
  void send(Command command);
  void run();
  void runCommands();
  void readEvents();
  void notice(XEvent& event);
  void answerVerdict();
  void letGo(platform::Verdict verdict);
  void stopRepeating();
  void giveUpOnMain();
  void passed(const platform::KeyEvent& event);
  void follow(KeyGrabs::Extent extent);
  [[nodiscard]] std::vector<Window> targetWindows() const;
  void wait();

  std::unique_ptr<Connection> connection_;
  int opcode_;
  KeyMap keys_;
  WindowList windows_;
  KeyGrabs grabs_;
  KeyReader reader_;
  Handover handover_;

  // The thread's own.
  bool enabled_ = false;
  bool mayBeArmed_ = false;
  std::optional<ReadKey> held_;
  /// When the held key is to stop repeating; none when it has, or repeats no more.
  std::optional<Handover::Clock::time_point> repeatEnd_;

  std::mutex commandMutex_;
  std::vector<Command> commands_;
  std::atomic<bool> stopping_ = false;
  std::thread thread_;
};

}  // namespace keyvora::x11
