#pragma once

#include <memory>
#include <string>

#include "hosts/x11/applications/target_window.h"
#include "platform/applications.h"

namespace keyvora::x11 {

/// A document's window, as the accessibility bus shows it.
struct DocumentFrame {
  platform::ProcessIdentifier process = 0;
  /// UTF-8. Windows may share one.
  std::string title;
  /// Whether the window is the active one.
  bool isActive = false;
};

/// The applications with windows on an X display. What the window manager says on the root window is read
/// when it changes, by way of GLib's default main context; a question costs no round trip. Main thread.
class Applications : public platform::Applications {
 public:
  /// The display of this name, or the one that DISPLAY names when it is empty. Where there is none, nothing
  /// runs and nothing is in front.
  Applications(const std::string& displayName, const TargetWindow& target);
  ~Applications() override;

  /// The process of the target's window first, then in the order in which their first windows came.
  std::vector<platform::ProcessIdentifier> running(std::string_view bundleIdentifier) override;
  std::optional<std::string_view> frontmostBundleIdentifier() override;

  /// Whether keys were swallowed in any window yet.
  [[nodiscard]] bool hasDocument() const { return target_.get() != 0; }

  /// The frame of the target's window, or of the one that it is a dialog of; none when it is gone. One round
  /// trip.
  std::optional<DocumentFrame> documentFrame();

 private:
  struct Watch;
  const TargetWindow& target_;
  std::unique_ptr<Watch> watch_;
};

}  // namespace keyvora::x11
