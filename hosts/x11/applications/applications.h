#pragma once

#include <memory>
#include <string>

#include "platform/applications.h"

namespace keyvora::x11 {

/// The applications with windows on an X display. What the window manager says on the root window is read
/// when it changes, by way of GLib's default main context; a question costs no round trip. Main thread.
class Applications : public platform::Applications {
 public:
  /// The display of this name, or the one that DISPLAY names when it is empty. Where there is none, nothing
  /// runs and nothing is in front.
  explicit Applications(const std::string& displayName);
  ~Applications() override;

  std::vector<platform::ProcessIdentifier> running(std::string_view bundleIdentifier) override;
  std::optional<std::string_view> frontmostBundleIdentifier() override;

 private:
  struct Watch;
  std::unique_ptr<Watch> watch_;
};

}  // namespace keyvora::x11
