#pragma once

#include <X11/Xlib.h>
#include <X11/extensions/XInput.h>

#include <memory>
#include <string>

namespace keyvora::typist {

/// An attached keyboard whose keys are pressed as if by hand: to every client it is hardware.
class Keyboard {
 public:
  /// Opens the device of this name. Throws std::runtime_error when it does not exist.
  Keyboard(Display* display, const std::string& name);

  /// Queues one press or release; `flush` sends the queue.
  void key(KeyCode code, bool down);

  /// Until `endUndisturbed`, the server processes requests of this client only.
  void beginUndisturbed();
  void endUndisturbed();

  /// Sends the queue and waits until the display has processed it.
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
