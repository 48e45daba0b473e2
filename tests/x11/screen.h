#pragma once

#include <X11/Xlib.h>

#include <memory>
#include <optional>
#include <string>

#include "hosts/x11/display.h"

namespace keyvora::x11 {

/// What a user sees and does on the display named by DISPLAY, using X only.
class Screen {
 public:
  struct Area {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    friend bool operator==(const Area&, const Area&) = default;
  };

  Screen();

  /// Waits for a visible window with this title, at any depth, and returns its area; none when it does not
  /// appear.
  std::optional<Area> awaitWindow(const std::string& title);
  std::optional<Area> window(const std::string& title);

  /// The same, but after the window's application and its tray have exchanged their messages.
  std::optional<Area> settledWindow(const std::string& title);

  /// Waits until no window has the title.
  bool awaitNoWindow(const std::string& title);

  /// The number of windows that the window manager manages.
  std::size_t managedWindows();

  void click(const Area& area, unsigned button = 1);
  void press(KeySym key, KeySym modifier = NoSymbol);

 private:
  std::unique_ptr<Connection> connection_;
};

}  // namespace keyvora::x11
