#include "hosts/x11/tap/tap_thread.h"

#include <X11/XKBlib.h>
#include <X11/extensions/XInput2.h>
#include <X11/extensions/XTest.h>
#include <poll.h>

#include <algorithm>
#include <array>
#include <future>
#include <utility>

#include "hosts/x11/keyboard/key_codes.h"

namespace keyvora::x11 {
namespace {

using platform::Verdict;
namespace event_type = platform::event_type;

/// For a few round trips to the server: who asks for the tap may take it that keys are caught from then on.
constexpr std::chrono::milliseconds grabbingLimit{250};

/// Well before a key begins to repeat, which takes 200 ms at the very least, and long for a verdict.
constexpr std::chrono::milliseconds longestRepeating{100};

bool hasKeyExtensions(Display* display) {
  int unused = 0;
  int major = XkbMajorVersion;
  int minor = XkbMinorVersion;
  // XTEST is asked for in any case before the first injection: Xlib would do it in the midst of that one and
  // shift its serial number.
  return XTestQueryExtension(display, &unused, &unused, &unused, &unused) &&
         XkbQueryExtension(display, &unused, &unused, &unused, &major, &minor);
}

}  // namespace

std::shared_ptr<TapThread> TapThread::start(const std::string& displayName) {
  auto connection = Connection::open(displayName);
  if (!connection) return nullptr;
  const auto opcode = xinputOpcode(connection->get());
  const auto devices = findKeyDevices(connection->get());
  if (!opcode || !devices || !hasKeyExtensions(connection->get())) return nullptr;

  std::shared_ptr<TapThread> tap(new TapThread(std::move(connection), *opcode, *devices));
  if (!tap->claim()) return nullptr;
  tap->thread_ = std::thread([raw = tap.get()] { raw->run(); });
  return tap;
}

TapThread::TapThread(std::unique_ptr<Connection> connection, int opcode, KeyDevices devices)
    : connection_(std::move(connection)),
      opcode_(opcode),
      keys_(connection_->get()),
      windows_(connection_->get()),
      grabs_(connection_->get(), devices.master),
      reader_(connection_->get(), devices, keys_, *this) {}

TapThread::~TapThread() {
  if (!thread_.joinable()) return;
  stopping_ = true;
  handover_.toTap().signal();
  thread_.join();
}

void TapThread::enable() {
  const auto grabbed = std::make_shared<std::promise<void>>();
  const auto done = grabbed->get_future();
  send([this, grabbed] {
    if (!enabled_) {
      enabled_ = true;
      reader_.resynchronise();  // what was read while the tap was off was not followed
      follow(mayBeArmed_ ? KeyGrabs::Extent::everyKey : KeyGrabs::Extent::option);
    }
    grabbed->set_value();
  });
  done.wait_for(grabbingLimit);
}

void TapThread::inject(KeyCode key, bool down, OwnMark mark) {
  send([this, key, down, mark] { reader_.inject(key, down, mark); });
}

/// Makes this the session's only tap, with what X has that only one client can hold and that ends with its
/// connection, however that ends: the passive grab of a button, one that no pointer has. It is refused to a
/// second tap even while the target has no window whose keys could be.
bool TapThread::claim() {
  constexpr int noPointersButton = 255;
  XIEventMask nothing{.deviceid = XIAllMasterDevices, .mask_len = 0, .mask = nullptr};
  XIGrabModifiers modifiers{.modifiers = int(XIAnyModifier), .status = 0};
  const int refused =
      XIGrabButton(connection_->get(), XIAllMasterDevices, noPointersButton, connection_->root(), None,
                   XIGrabModeAsync, XIGrabModeAsync, False, &nothing, 1, &modifiers);
  if (refused != 0) return false;

  const bool granted = grabs_.apply(KeyGrabs::Extent::option, targetWindows(), keys_);
  grabs_.apply(KeyGrabs::Extent::none, {}, keys_);
  XSync(connection_->get(), False);
  return granted;
}

void TapThread::send(Command command) {
  {
    const std::scoped_lock lock(commandMutex_);
    commands_.push_back(std::move(command));
  }
  handover_.toTap().signal();
}

void TapThread::run() {
  while (!stopping_) {
    runCommands();
    answerVerdict();
    readEvents();
    stopRepeating();
    giveUpOnMain();
    wait();
  }
  grabs_.apply(KeyGrabs::Extent::none, {}, keys_);
  letGo(Verdict::pass);
}

void TapThread::runCommands() {
  std::vector<Command> commands;
  {
    const std::scoped_lock lock(commandMutex_);
    commands.swap(commands_);
  }
  for (const auto& command : commands) command();
}

void TapThread::readEvents() {
  Display* display = connection_->get();
  while (XPending(display) > 0) {
    XEvent event;
    XNextEvent(display, &event);
    notice(event);
    if (!reader_.isUndecided() || XPending(display) > 0) continue;
    // The server reports a press and the grab that holds it in one go, so once it has answered, either the
    // grab's event is here or there is none.
    XSync(display, False);
    if (XPending(display) == 0) reader_.decide();
  }
}

void TapThread::notice(XEvent& event) {
  if (event.type == GenericEvent && event.xcookie.extension == opcode_) {
    if (!XGetEventData(connection_->get(), &event.xcookie)) return;
    reader_.notice(event.xcookie);
    XFreeEventData(connection_->get(), &event.xcookie);
  } else if (keys_.notice(event) || windows_.notice(event)) {
    follow(grabs_.extent());
  }
}

bool TapThread::mayBeHeld(std::uint16_t keyCode) const {
  if (grabs_.windows().empty()) return false;
  return grabs_.extent() == KeyGrabs::Extent::everyKey ||
         (grabs_.extent() == KeyGrabs::Extent::option && key_code::isOption(keyCode));
}

void TapThread::keyRead(const ReadKey& key) {
  const bool isHeld = key.heldSince.has_value();
  const bool repeatedModifier = key.repeated && key.event.type == event_type::flagsChanged;
  if (!enabled_ || repeatedModifier) {
    if (isHeld) grabs_.replay(*key.heldSince);
  } else if (isHeld) {
    const auto now = Handover::Clock::now();
    held_ = key;
    repeatEnd_ = now + longestRepeating;
    handover_.ask(key.event, now);
  } else {
    handover_.tell(key.event, Handover::Clock::now());
    passed(key.event);
  }
}

void TapThread::answerVerdict() {
  const auto verdict = handover_.verdict();
  if (!verdict) return;
  letGo(*verdict);
  handover_.released();
}

void TapThread::letGo(Verdict verdict) {
  if (!held_) return;
  const auto key = *std::exchange(held_, std::nullopt);
  repeatEnd_.reset();
  if (verdict == Verdict::swallow) {
    grabs_.swallow(*key.heldSince);
  } else {
    if (enabled_ && key_code::isOption(key.event.keyCode) && key.event.userData == 0) {
      mayBeArmed_ = true;
      follow(KeyGrabs::Extent::everyKey);
    } else if (enabled_) {
      passed(key.event);
    }
    grabs_.replay(*key.heldSince);
  }
  XSync(connection_->get(), False);
}

/// Listens less where the handler lets this event pass, or could not do otherwise.
void TapThread::passed(const platform::KeyEvent& event) {
  const bool withOption = (event.flags & platform::event_flag::option) != 0;
  const bool isOwn = event.userData != 0;
  if (event.type == event_type::keyDown && !withOption && !isOwn && mayBeArmed_) {
    mayBeArmed_ = false;
    follow(KeyGrabs::Extent::option);
  }
  if (!mayBeArmed_) reader_.rest();
}

void TapThread::stopRepeating() {
  if (!repeatEnd_ || Handover::Clock::now() < *repeatEnd_) return;
  grabs_.stopRepeating(held_->keycode);
  repeatEnd_.reset();
}

void TapThread::giveUpOnMain() {
  if (!handover_.expire(Handover::Clock::now())) return;
  enabled_ = false;
  mayBeArmed_ = true;
  // The grabs first: a key that waits behind the one that is let go would be caught by them.
  grabs_.apply(KeyGrabs::Extent::none, {}, keys_);
  letGo(Verdict::pass);
}

void TapThread::follow(KeyGrabs::Extent extent) {
  if (!enabled_) return;
  if (extent == KeyGrabs::Extent::everyKey) reader_.attend();
  grabs_.apply(extent, targetWindows(), keys_);
}

std::vector<Window> TapThread::targetWindows() const {
  std::vector<Window> targets;
  for (const auto& window : windows_.windows()) {
    if (!window.bundleIdentifier.empty()) targets.push_back(window.window);
  }
  return targets;
}

void TapThread::wait() {
  Display* display = connection_->get();
  XFlush(display);
  if (XEventsQueued(display, QueuedAlready) > 0) return;
  auto end = handover_.deadline();
  if (repeatEnd_ && (!end || *repeatEnd_ < *end)) end = repeatEnd_;
  int limit = -1;
  if (end) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(*end - Handover::Clock::now());
    limit = int(std::clamp(left, std::chrono::milliseconds(0), verdictLimit).count());
  }
  std::array<pollfd, 2> sources{
      {{connection_->fileDescriptor(), POLLIN, 0}, {handover_.toTap().fileDescriptor(), POLLIN, 0}}};
  poll(sources.data(), sources.size(), limit);
  if ((sources[1].revents & POLLIN) != 0) handover_.toTap().clear();
}

}  // namespace keyvora::x11
