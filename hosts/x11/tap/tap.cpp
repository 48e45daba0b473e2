#include "hosts/x11/tap/tap.h"

#include <X11/XKBlib.h>
#include <X11/extensions/XInput2.h>
#include <X11/extensions/XTest.h>
#include <poll.h>

#include <algorithm>
#include <array>
#include <utility>

#include "hosts/x11/keyboard/key_codes.h"
#include "hosts/x11/tap/tap_claim.h"

namespace keyvora::x11 {
namespace {

using platform::Verdict;
namespace event_type = platform::event_type;

/// Shorter than the shortest delay before a key repeats, 200 ms, and long for a verdict.
constexpr std::chrono::milliseconds longestRepeating{100};

bool hasKeyExtensions(Display* display) {
  int unused = 0;
  int major = XkbMajorVersion;
  int minor = XkbMinorVersion;
  // Queries XTEST before the first injection: otherwise Xlib would do it inside that injection, and its
  // serial number would be wrong.
  return XTestQueryExtension(display, &unused, &unused, &unused, &unused) &&
         XkbQueryExtension(display, &unused, &unused, &unused, &major, &minor);
}

}  // namespace

std::unique_ptr<Tap> Tap::open(const std::string& displayName, TapEnd& owner) {
  auto connection = Connection::open(displayName);
  if (!connection) return nullptr;
  const auto opcode = xinputOpcode(connection->get());
  const auto devices = findKeyDevices(connection->get());
  if (!opcode || !devices || !hasKeyExtensions(connection->get())) return nullptr;

  std::unique_ptr<Tap> tap(new Tap(std::move(connection), *opcode, *devices, owner));
  if (!tap->claim()) return nullptr;
  return tap;
}

Tap::Tap(std::unique_ptr<Connection> connection, int opcode, KeyDevices devices, TapEnd& owner)
    : connection_(std::move(connection)),
      opcode_(opcode),
      owner_(owner),
      keys_(connection_->get()),
      windows_(connection_->get()),
      grabs_(connection_->get(), devices.master),
      reader_(connection_->get(), devices, keys_, *this) {}

Tap::~Tap() {
  enabled_ = false;
  grabs_.apply(KeyGrabs::Extent::none, {}, keys_);
  letGo(Verdict::pass);
  disclaimTap(*connection_);
  XSync(connection_->get(), False);
  // The server may hold a key that was not read of yet. With this connection it would drop it.
  readEvents();
  XSync(connection_->get(), False);
}

/// Makes this the session's only tap, if the target's keys can be grabbed.
bool Tap::claim() {
  if (!claimTap(*connection_)) return false;

  const bool granted = grabs_.apply(KeyGrabs::Extent::option, targetWindows(), keys_);
  grabs_.apply(KeyGrabs::Extent::none, {}, keys_);
  XSync(connection_->get(), False);
  return granted;
}

void Tap::run() {
  for (;;) {
    heedOwner();
    if (owner_.ended()) return;
    readEvents();
    keepTime(Clock::now());
    wait();
  }
}

void Tap::heedOwner() {
  while (const auto wanted = owner_.next()) {
    if (wanted->kind == OwnerRecord::Kind::enable) enable();
    if (wanted->kind == OwnerRecord::Kind::inject)
      reader_.inject(wanted->keycode, wanted->down, wanted->mark);
  }
  const auto verdict = owner_.takeVerdict();
  if (!verdict) return;
  letGo(*verdict);
  owner_.released();
}

void Tap::enable() {
  if (!enabled_) {
    enabled_ = true;
    reader_.resynchronise();  // the owner did not get the events read while the tap was off
    follow(mayBeArmed_ ? KeyGrabs::Extent::everyKey : KeyGrabs::Extent::option);
    XSync(connection_->get(), False);
  }
  owner_.enabled();
}

void Tap::readEvents() {
  Display* display = connection_->get();
  while (XPending(display) > 0) {
    XEvent event;
    XNextEvent(display, &event);
    notice(event);
    if (!reader_.isUndecided() || XPending(display) > 0) continue;
    // The server sends a press and the event of the grab that caught it together. So after this round trip
    // either the grab's event has arrived or no grab caught the press.
    XSync(display, False);
    if (XPending(display) == 0) reader_.decide();
  }
}

void Tap::notice(XEvent& event) {
  if (event.type == GenericEvent && event.xcookie.extension == opcode_) {
    if (!XGetEventData(connection_->get(), &event.xcookie)) return;
    reader_.notice(event.xcookie);
    XFreeEventData(connection_->get(), &event.xcookie);
    return;
  }
  if (const auto change = keys_.groupChange(event)) reader_.groupChanged(*change);
  if (keys_.notice(event) || windows_.notice(event)) {
    follow(grabs_.extent());
  }
}

bool Tap::mayBeHeld(unsigned keycode) const {
  return grabs_.cover(keycode);
}

void Tap::keyRead(const ReadKey& key) {
  const bool isHeld = key.heldSince.has_value();
  if (key.repeated && swallowed_[key.keycode]) {
    if (isHeld) grabs_.swallow(*key.heldSince);
    return;
  }
  swallowed_.reset(key.keycode);
  const bool repeatedModifier = key.repeated && key.event.type == event_type::flagsChanged;
  if (!enabled_ || repeatedModifier) {
    if (isHeld) grabs_.replay(*key.heldSince);
    if (!enabled_) reader_.rest();
  } else if (isHeld) {
    const auto now = Clock::now();
    held_ = key;
    repeatEnd_ = now + longestRepeating;
    owner_.ask(key.event, now, key.window);
  } else {
    owner_.tell(key.event, Clock::now());
    passed(key.event);
  }
}

void Tap::letGo(Verdict verdict) {
  if (!held_) return;
  const auto key = *std::exchange(held_, std::nullopt);
  const bool mayRepeat = std::exchange(repeatEnd_, std::nullopt).has_value();
  if (verdict == Verdict::swallow) {
    swallowed_.set(key.keycode);
    grabs_.swallow(*key.heldSince);
    // While the key stays down: its repetitions must not reach the window after the sequence has ended.
    if (mayRepeat) grabs_.stopRepeating(key.keycode);
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

/// Reduces the grabs after an event that the handler let pass, or could not have swallowed.
void Tap::passed(const platform::KeyEvent& event) {
  const bool withOption = (event.flags & platform::event_flag::option) != 0;
  const bool isOwn = event.userData != 0;
  if (event.type == event_type::keyDown && !withOption && !isOwn && mayBeArmed_) {
    mayBeArmed_ = false;
    follow(KeyGrabs::Extent::option);
  }
  if (!mayBeArmed_) reader_.rest();
}

void Tap::keepTime(Clock::time_point now) {
  if (repeatEnd_ && now >= *repeatEnd_) {
    grabs_.stopRepeating(held_->keycode);
    repeatEnd_.reset();
  }
  if (!owner_.expire(now)) return;
  enabled_ = false;
  mayBeArmed_ = true;
  // Ungrab first: otherwise the grabs would catch the keys that follow the released one.
  grabs_.apply(KeyGrabs::Extent::none, {}, keys_);
  letGo(Verdict::pass);
  reader_.rest();  // while the tap is off, keys need not be read
  XSync(connection_->get(), False);
}

void Tap::follow(KeyGrabs::Extent extent) {
  if (!enabled_) return;
  if (extent == KeyGrabs::Extent::everyKey) reader_.attend();
  grabs_.apply(extent, targetWindows(), keys_);
}

std::vector<Window> Tap::targetWindows() const {
  std::vector<Window> targets;
  for (const auto& window : windows_.windows()) {
    if (!window.bundleIdentifier.empty()) targets.push_back(window.window);
  }
  return targets;
}

void Tap::wait() {
  Display* display = connection_->get();
  XFlush(display);
  if (XEventsQueued(display, QueuedAlready) > 0) return;
  auto end = owner_.deadline();
  if (repeatEnd_ && (!end || *repeatEnd_ < *end)) end = repeatEnd_;
  int limit = -1;
  if (end) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(*end - Clock::now());
    limit = int(std::clamp(left, std::chrono::milliseconds(0), verdictLimit).count());
  }
  std::array<pollfd, 2> sources{
      {{connection_->fileDescriptor(), POLLIN, 0}, {owner_.fileDescriptor(), owner_.awaited(), 0}}};
  poll(sources.data(), sources.size(), limit);
}

}  // namespace keyvora::x11
