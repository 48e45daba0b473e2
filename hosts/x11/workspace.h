#pragma once

#include "hosts/x11/notices.h"
#include "platform/applications.h"

namespace keyvora::x11 {

/// Opens files and addresses with the desktop's handlers, without waiting for them.
class Workspace final : public platform::Workspace {
 public:
  explicit Workspace(Notices& notices) : notices_(notices) {}

  void openFile(const std::string& path) override;

  /// The address of macOS's Accessibility settings opens this desktop's.
  void openAddress(const std::string& address) override;

 private:
  Notices& notices_;
};

}  // namespace keyvora::x11
