#include "tests/macos/rig/recorders/window_server.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <thread>

#include "tests/macos/rig/recorders/failures.h"
#include "tests/macos/rig/recorders/record.h"

namespace keyvora::rig {
namespace {

const char* nameOf(Fate fate) {
  switch (fate) {
    case Fate::passed:
      return "passed";
    case Fate::swallowed:
      return "swallowed";
    case Fate::timedOut:
      return "timed out";
  }
}

void signal(int descriptor) {
  const uint64_t one = 1;
  static_cast<void>(!::write(descriptor, &one, sizeof one));
}

}  // namespace

Tap::Tap(CGEventMask mask, bool active, CGEventTapCallBack callback, void* userInfo)
    : CFObject(name),
      mask_(mask),
      active_(active),
      callback_(callback),
      userInfo_(userInfo),
      descriptor_(::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC | EFD_SEMAPHORE)) {}

void Tap::deliver() {
  uint64_t one = 0;
  if (::read(descriptor_, &one, sizeof one) < 0) return;
  std::shared_ptr<Delivery> next;
  {
    const std::scoped_lock lock(mutex_);
    if (waiting_.empty()) return;
    next = waiting_.front();
    waiting_.pop_front();
  }
  const Fate fate = isAbandoned(*next) ? Fate::passed : call(*next);
  if (isAbandoned(*next)) {
    next->event->release();
    return;
  }
  {
    const std::scoped_lock lock(mutex_);
    next->fate = fate;
  }
  decided_.notify_all();
}

bool Tap::isAbandoned(const Delivery& delivery) {
  const std::scoped_lock lock(mutex_);
  return delivery.abandoned;
}

/// The caller owns the event: the callback releases as many references as it retains.
Fate Tap::call(const Delivery& delivery) {
  requireMainThread("an event tap's callback");
  CGEventRef event = delivery.event == nullptr ? nullptr : delivery.event->reference();
  const int before = delivery.event == nullptr ? 0 : delivery.event->references();
  CGEventRef answer = callback_(nullptr, delivery.type, event, userInfo_);
  if (delivery.event != nullptr && delivery.event->references() != before) {
    violation("the callback left the event with %d references, not %d", delivery.event->references(), before);
  }
  if (answer != nullptr && answer != event) violation("the callback answered with another event");
  return answer == nullptr && active_ ? Fate::swallowed : Fate::passed;
}

WindowServer& WindowServer::shared() {
  static auto& server = *new WindowServer;
  return server;
}

WindowServer::WindowServer() = default;

Tap* WindowServer::createTap(CGEventMask mask, bool active, CGEventTapCallBack callback, void* userInfo) {
  if (!trusted_ || fails("CGEventTapCreate")) return nullptr;
  const std::scoped_lock lock(mutex_);
  tap_ = new Tap(mask, active, callback, userInfo);
  return tap_;
}

Tap* WindowServer::tap() {
  const std::scoped_lock lock(mutex_);
  return tap_ != nullptr && tap_->valid ? tap_ : nullptr;
}

void WindowServer::disableTap(CGEventType notice) {
  Tap* current = tap();
  if (current == nullptr) return;
  current->enabled = false;
  if (notice != kCGEventNull) notify(*current, notice);
}

void WindowServer::killTap() {
  if (Tap* current = tap()) current->valid = false;
}

void WindowServer::notify(Tap& tap, CGEventType type) {
  auto notice = std::make_shared<Delivery>();
  notice->type = type;
  {
    const std::scoped_lock lock(tap.mutex_);
    tap.waiting_.push_back(std::move(notice));
  }
  signal(tap.descriptor_);
}

Fate WindowServer::press(CGKeyCode key, bool down, CGEventFlags flags) {
  KeyEvent* event = makeKeyEvent(key, down, flags);
  const Fate fate = pass(*event);
  event->release();
  return fate;
}

void WindowServer::inject(const KeyEvent& event) {
  auto* copy = new KeyEvent;
  copy->eventType = event.eventType;
  copy->key = event.key;
  copy->flags = event.flags;
  copy->userData = event.userData;
  std::thread([this, copy] {
    pass(*copy);
    copy->release();
  }).detach();
}

Fate WindowServer::pass(KeyEvent& event) {
  const std::scoped_lock one(passing_);
  Fate fate = Fate::passed;
  Tap* current = tap();
  const bool wanted =
      current != nullptr && current->enabled && ((current->mask_ >> event.eventType) & 1) != 0;
  if (wanted) {
    auto delivery = std::make_shared<Delivery>();
    delivery->type = event.eventType;
    delivery->event = &event;
    std::unique_lock lock(current->mutex_);
    current->waiting_.push_back(delivery);
    signal(current->descriptor_);
    if (current->decided_.wait_for(lock, limit_.load(), [&] { return delivery->fate.has_value(); })) {
      fate = *delivery->fate;
    } else {
      fate = Fate::timedOut;
      delivery->abandoned = true;
      current->enabled = false;
      event.retain();  // for a callback that is still running
    }
  }
  record("key %s: %s%s", event.description().c_str(), nameOf(fate), wanted ? "" : ", no tap");
  if (fate == Fate::timedOut) notify(*current, kCGEventTapDisabledByTimeout);
  return fate;
}

}  // namespace keyvora::rig

using keyvora::rig::Tap;
using keyvora::rig::use;
using keyvora::rig::WindowServer;

CFMachPortRef CGEventTapCreate(CGEventTapLocation tap, CGEventTapPlacement place, CGEventTapOptions options,
                               CGEventMask eventsOfInterest, CGEventTapCallBack callback, void* userInfo) {
  keyvora::rig::record("CGEventTapCreate location %u placement %u options %u mask 0x%llx", tap, place,
                       options, static_cast<unsigned long long>(eventsOfInterest));
  Tap* made = WindowServer::shared().createTap(eventsOfInterest, options == kCGEventTapOptionDefault,
                                               callback, userInfo);
  return made == nullptr ? nullptr : made->reference();
}

void CGEventTapEnable(CFMachPortRef tap, bool enable) {
  keyvora::rig::record("CGEventTapEnable %s", enable ? "true" : "false");
  auto* found = use<Tap>(tap, "CGEventTapEnable");
  if (found != nullptr && found->valid) found->enabled = enable;
}

bool CGEventTapIsEnabled(CFMachPortRef tap) {
  const auto* found = use<Tap>(tap, "CGEventTapIsEnabled");
  return found != nullptr && found->valid && found->enabled;
}

Boolean CFMachPortIsValid(CFMachPortRef port) {
  const auto* found = use<Tap>(port, "CFMachPortIsValid");
  return found != nullptr && found->valid;
}

void CFMachPortInvalidate(CFMachPortRef port) {
  keyvora::rig::record("CFMachPortInvalidate");
  if (auto* found = use<Tap>(port, "CFMachPortInvalidate")) found->valid = false;
}
