#pragma once

#include <X11/Xlib.h>

#include <memory>
#include <optional>
#include <string>

#include "hosts/x11/display.h"

namespace keyvora::x11 {

/// What a user sees and does on the display that DISPLAY names, by X alone.
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

  /// Where the visible window with this title is on the screen, however deep inside others; none when there
  /// is none. Waits for it.
  std::optional<Area> awaitWindow(const std::string& title);
  std::optional<Area> window(const std::string& title);

  /// The same, after what the window's application and its tray still had to say to each other.
  std::optional<Area> settledWindow(const std::string& title);

  /// Waits until no window has the title.
  bool awaitNoWindow(const std::string& title);

  /// How many windows the window manager knows.
  std::size_t managedWindows();

  void click(const Area& area, unsigned button = 1);
  void press(KeySym key, KeySym modifier = NoSymbol);

 private:
  std::unique_ptr<Connection> connection_;
};

}  // namespace keyvora::x11
