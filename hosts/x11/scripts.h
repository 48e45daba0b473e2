#pragma once

#include <chrono>

#include "platform/scripts.h"

namespace keyvora::x11 {

class CurrentTap;

/// Scripts by way of a program named `osascript` on PATH, which stands in for the AppleScript runtime: it
/// reads the source on standard input, says on standard error what went wrong, and ends with status 0 on
/// success. It is ended, with all that it started in its process group, when it takes longer than the limit
/// and when a signal comes that ends the program.
class Scripts final : public platform::Scripts {
 public:
  explicit Scripts(CurrentTap& tap, std::chrono::seconds limit = std::chrono::seconds(120))
      : tap_(tap), limit_(limit) {}

  platform::ScriptOutcome run(const std::string& source) override;

 private:
  CurrentTap& tap_;
  std::chrono::seconds limit_;
};

}  // namespace keyvora::x11
