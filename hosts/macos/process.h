#pragma once

#include "platform/application.h"

namespace keyvora::macos {

/// The process, through the C library. NSApplication's `terminate:` also ends in `exit`.
class Process final : public platform::Process {
 public:
  void print(std::string_view line) override;
  void exit(int status) override;
  void atExit(std::function<void()> block) override;
};

}  // namespace keyvora::macos
