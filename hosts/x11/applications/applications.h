#pragma once

#include <memory>
#include <string>

#include "hosts/x11/applications/target_window.h"
#include "platform/applications.h"

namespace keyvora::x11 {

/// A document's window, as found on the accessibility bus.
struct DocumentFrame {
  platform::ProcessIdentifier process = 0;
  /// UTF-8. Several windows may have the same title.
  std::string title;
  /// Whether the window is the active one.
  bool isActive = false;
};

/// The applications with windows on an X display. The window manager's properties on the root window are
/// read when they change, from GLib's default main context, so that a question costs no round trip. Main
/// thread.
class Applications : public platform::Applications {
 public:
  /// The display of this name, or the one that DISPLAY names when it is empty. Without a display, no
  /// application is running or in front.
  Applications(const std::string& displayName, const TargetWindow& target);
  ~Applications() override;

  /// The process of the target's window first, the others in the order in which their first windows
  /// appeared.
  std::vector<platform::ProcessIdentifier> running(std::string_view bundleIdentifier) override;
  std::optional<std::string_view> frontmostBundleIdentifier() override;

  /// Whether keys have been swallowed in some window.
  [[nodiscard]] bool hasDocument() const { return targetWindow() != 0; }

  /// The X window that the last swallowed keys were meant for; 0 before the first.
  [[nodiscard]] unsigned long targetWindow() const { return target_.get(); }

  /// The frame of the target's window, or of the window it is a dialog of; none when it was closed. One
  /// round trip.
  std::optional<DocumentFrame> documentFrame();

 private:
  struct Watch;
  const TargetWindow& target_;
  std::unique_ptr<Watch> watch_;
};

}  // namespace keyvora::x11
