#pragma once

#include <X11/Xlib.h>
#include <X11/extensions/XInput.h>

#include <memory>
#include <string>

namespace keyvora::typist {

/// One attached keyboard that keys are pressed on as if by hand: to every client, hardware.
class Keyboard {
 public:
  /// Opens the device of this name. Throws std::runtime_error when there is none.
  Keyboard(Display* display, const std::string& name);

  /// Queues one press or release; `flush` sends what is queued.
  void key(KeyCode code, bool down);

  /// From here to `endUndisturbed` the server takes keys from nobody else.
  void beginUndisturbed();
  void endUndisturbed();

  /// Sends everything queued and waits until the display has taken it.
  void flush();

 private:
  struct Close {
    Display* display;
    void operator()(XDevice* device) const { XCloseDevice(display, device); }
  };

  Display* display_;
  std::unique_ptr<XDevice, Close> device_;
};

}  // namespace keyvora::typist
