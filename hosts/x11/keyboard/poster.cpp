#include "hosts/x11/keyboard/poster.h"

#include <X11/XKBlib.h>
#include <X11/extensions/XTest.h>

#include <array>
#include <utility>

#include "hosts/x11/applications/window_choice.h"
#include "hosts/x11/keyboard/current_tap.h"
#include "hosts/x11/keyboard/key_codes.h"
#include "hosts/x11/keyboard/modifier_state.h"
#include "hosts/x11/tap/own_events.h"
#include "platform/keyboard.h"

namespace keyvora::x11 {
namespace {

/// The keys for the flags, in the order in which they go down.
constexpr std::array flagKeys{key_code::leftShift, key_code::leftControl, key_code::leftOption,
                              key_code::leftCommand};

}  // namespace

std::unique_ptr<Poster> Poster::open(const std::string& displayName, const TargetWindow& target) {
  auto connection = Connection::open(displayName);
  if (!connection) return nullptr;
  return std::unique_ptr<Poster>(new Poster(std::move(connection), target));
}

Poster::Poster(std::unique_ptr<Connection> connection, const TargetWindow& target)
    : connection_(std::move(connection)), target_(target), keys_(connection_->get()), clock_(*connection_) {}

bool Poster::hasKey(std::uint16_t keyCode) {
  const std::scoped_lock lock(mutex_);
  catchUp();
  return keys_.keycode(keyCode).has_value();
}

void Poster::sendTo(platform::ProcessIdentifier process, const KeyStroke& stroke, KeyboardIsFree) {
  const std::scoped_lock lock(mutex_);
  // Toolkits take an event without a time for an old one. Asking for it is a round trip, so every change of
  // the map has arrived.
  const Time now = clock_.now();
  readEvents();
  const auto keycode = keys_.keycode(stroke.keyCode);
  const Window window = windowOf(process);
  if (!keycode || window == None) return;

  XEvent event{};
  auto& key = event.xkey;
  key.type = stroke.down ? KeyPress : KeyRelease;
  key.display = connection_->get();
  key.window = window;
  key.root = connection_->root();
  key.time = now;
  key.state = stateBefore(stroke);
  key.keycode = *keycode;
  key.same_screen = True;
  // Without an event mask the event goes to the window's own client. Toolkits accept that, but ignore an
  // event sent with the mask of key presses.
  XSendEvent(connection_->get(), window, False, NoEventMask, &event);
  // Waits until the server has it: the user's next key goes by another connection and must not overtake it.
  XSync(connection_->get(), False);
}

void Poster::inject(const KeyStroke& stroke, CurrentTap& tap, KeyboardIsFree) {
  const std::scoped_lock lock(mutex_);
  catchUp();
  const bool holdsModifiers = stroke.down && !stroke.isFlagsChange && stroke.flags != 0;
  if (!holdsModifiers) {
    injectKey(stroke.keyCode, stroke.down, stroke, tap);
  } else {
    for (const auto key : flagKeys) {
      if ((stroke.flags & flagOf(key)) != 0) injectKey(key, true, stroke, tap);
    }
    injectKey(stroke.keyCode, true, stroke, tap);
    for (const auto key : flagKeys) {
      if ((stroke.flags & flagOf(key)) != 0) injectKey(key, false, stroke, tap);
    }
  }
  XFlush(connection_->get());
}

/// Learns of every change of the keyboard map that has happened. One round trip.
void Poster::catchUp() {
  XSync(connection_->get(), False);
  readEvents();
}

void Poster::readEvents() {
  while (XPending(connection_->get()) > 0) {
    XEvent event;
    XNextEvent(connection_->get(), &event);
    keys_.notice(event);
  }
}

Window Poster::windowOf(platform::ProcessIdentifier process) const {
  Display* display = connection_->get();
  const Window target = target_.get();
  return target == None ? anyWindowOf(display, process) : frontOf(display, target, process);
}

/// The modifier state for an X event: the state before the event.
unsigned Poster::stateBefore(const KeyStroke& stroke) const {
  auto flags = stroke.flags;
  if (stroke.isFlagsChange && stroke.down) flags &= ~flagOf(stroke.keyCode);
  if (stroke.isFlagsChange && !stroke.down) flags |= flagOf(stroke.keyCode);
  XkbStateRec state{};
  XkbGetState(connection_->get(), XkbUseCoreKbd, &state);
  return XkbBuildCoreState(keys_.modifierBits(flags), state.group);
}

void Poster::injectKey(std::uint16_t keyCode, bool down, const KeyStroke& stroke, CurrentTap& tap) {
  const auto keycode = keys_.keycode(keyCode);
  if (!keycode) return;
  if (tap.inject(*keycode, down, {stroke.userData, stroke.flags})) return;
  XTestFakeKeyEvent(connection_->get(), *keycode, down ? True : False, CurrentTime);
}

}  // namespace keyvora::x11
