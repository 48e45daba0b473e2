#include "keyboard.h"

#include <X11/extensions/XTest.h>

#include <span>
#include <stdexcept>

namespace keyvora::typist {
namespace {

XID deviceCalled(Display* display, const std::string& name) {
  int count = 0;
  const std::unique_ptr<XDeviceInfo, decltype(&XFreeDeviceList)> list(XListInputDevices(display, &count),
                                                                      &XFreeDeviceList);
  std::string present;
  for (const auto& device : std::span(list.get(), static_cast<std::size_t>(count))) {
    if (name == device.name) return device.id;
    present += "\n  " + std::string(device.name);
  }
  throw std::runtime_error("no input device is called \"" + name + "\"; there are:" + present);
}

}  // namespace

Keyboard::Keyboard(Display* display, const std::string& name)
    : display_(display), device_(XOpenDevice(display, deviceCalled(display, name)), Close{display}) {
  if (!device_) throw std::runtime_error("cannot open the input device \"" + name + "\"");
}

void Keyboard::key(KeyCode code, bool down) {
  XTestFakeDeviceKeyEvent(display_, device_.get(), code, down ? True : False, nullptr, 0, CurrentTime);
}

void Keyboard::beginUndisturbed() {
  XGrabServer(display_);
}

void Keyboard::endUndisturbed() {
  XUngrabServer(display_);
}

void Keyboard::flush() {
  XSync(display_, False);
}

}  // namespace keyvora::typist
