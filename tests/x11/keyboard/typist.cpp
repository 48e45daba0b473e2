#include "tests/x11/keyboard/typist.h"

#include <X11/XKBlib.h>
#include <X11/extensions/XInput.h>
#include <X11/extensions/XTest.h>

#include <stdexcept>
#include <string_view>
#include <vector>

#include "hosts/x11/display.h"
#include "hosts/x11/keyboard/key_map.h"

namespace keyvora::x11 {
namespace {

XDevice* openDevice(Display* display, std::string_view name) {
  int count = 0;
  XDeviceInfo* devices = XListInputDevices(display, &count);
  XDevice* found = nullptr;
  for (int i = 0; i < count && found == nullptr; ++i) {
    if (devices[i].name == name) found = XOpenDevice(display, devices[i].id);
  }
  XFreeDeviceList(devices);
  if (found == nullptr) throw std::runtime_error("the server has no device " + std::string(name));
  return found;
}

}  // namespace

struct Typist::State {
  explicit State(const std::string& displayName) : connection(Connection::open(displayName)) {
    if (!connection) throw std::runtime_error("no display " + displayName);
    keys = std::make_unique<KeyMap>(connection->get());
  }

  std::unique_ptr<Connection> connection;
  std::unique_ptr<KeyMap> keys;
  XDevice* device = nullptr;
};

Typist::Typist(const std::string& displayName, Device device) : state_(std::make_unique<State>(displayName)) {
  if (device == Device::hardware) state_->device = openDevice(state_->connection->get(), "Xvfb keyboard");
}

Typist::~Typist() {
  if (state_->device != nullptr) XCloseDevice(state_->connection->get(), state_->device);
}

void Typist::tap(std::initializer_list<std::uint16_t> keyCodes) {
  for (const auto keyCode : keyCodes) {
    press(keyCode);
    release(keyCode);
  }
}

void Typist::chord(std::initializer_list<std::uint16_t> held, std::uint16_t keyCode) {
  for (const auto key : held) press(key);
  tap({keyCode});
  for (const auto key : held) release(key);
}

void Typist::sync() {
  XSync(state_->connection->get(), False);
}

void Typist::setRepetition(std::chrono::milliseconds delay, std::chrono::milliseconds interval) {
  Display* display = state_->connection->get();
  XkbSetAutoRepeatRate(display, XkbUseCoreKbd, unsigned(delay.count()), unsigned(interval.count()));
  XSync(display, False);
}

void Typist::send(std::uint16_t keyCode, bool down) {
  const auto keycode = state_->keys->keycode(keyCode);
  if (!keycode) throw std::runtime_error("the keyboard has no key " + std::to_string(keyCode));
  Display* display = state_->connection->get();
  if (state_->device != nullptr) {
    XTestFakeDeviceKeyEvent(display, state_->device, *keycode, down ? True : False, nullptr, 0, CurrentTime);
  } else {
    XTestFakeKeyEvent(display, *keycode, down ? True : False, CurrentTime);
  }
  XFlush(display);
}

}  // namespace keyvora::x11
