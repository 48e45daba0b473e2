#pragma once

#include <functional>
#include <memory>
#include <string>

#include "hosts/x11/display.h"
#include "hosts/x11/loop/glib_source.h"
#include "platform/main_loop.h"

namespace keyvora::x11 {

/// Waits until a window manager reports the active window. The root window's property events wake it; nothing
/// is polled. Ended by its destructor. Main thread.
class WindowManagerWait {
 public:
  /// Runs `over` once on the main loop, when there is such a window manager or `limit` has passed; `over` may
  /// destroy the wait. Null, and `over` is not run, when there is one already or the display cannot be
  /// opened.
  static std::unique_ptr<WindowManagerWait> start(const std::string& displayName, platform::MainLoop& loop,
                                                  platform::Seconds limit, std::function<void()> over);

 private:
  WindowManagerWait(std::unique_ptr<Connection> connection, platform::MainLoop& loop, platform::Seconds limit,
                    std::function<void()> over);

  void look();
  void finish();

  std::unique_ptr<Connection> connection_;
  std::function<void()> over_;
  ReadableSource source_;
  std::unique_ptr<platform::Timer> timer_;
};

}  // namespace keyvora::x11
