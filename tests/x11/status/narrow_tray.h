#pragma once

#include <X11/Xlib.h>

#include <memory>
#include <optional>

#include "hosts/x11/display.h"
#include "hosts/x11/loop/glib_source.h"
#include "tests/x11/screen.h"

namespace keyvora::x11 {

/// A system tray with one slot of a fixed size. It embeds icons while the test runs the main loop.
class NarrowTray {
 public:
  /// What it does with an icon that has another size than the slot.
  enum class Sizes { ofTheSlot, asRequested };

  NarrowTray(int width, int height, Sizes sizes = Sizes::ofTheSlot);

  /// Whether an icon is in its slot.
  [[nodiscard]] bool hasIcon() const { return icon_ != None; }

  /// The width of the icon's window, which the slot may cut off; none when it is gone.
  [[nodiscard]] std::optional<int> iconWidth() const;

  /// The slot's area on the screen.
  [[nodiscard]] Screen::Area slot() const { return slot_; }

  /// How many pixels of the slot are brighter than medium gray, and how many are darker.
  struct Look {
    int bright = 0;
    int dark = 0;
    friend bool operator==(const Look&, const Look&) = default;
  };
  [[nodiscard]] Look look();

 private:
  void readEvents();
  void fit(Window icon);

  std::unique_ptr<Connection> connection_;
  Screen::Area slot_;
  Sizes sizes_;
  Window window_ = None;
  Window icon_ = None;
  std::optional<ReadableSource> events_;
};

}  // namespace keyvora::x11
