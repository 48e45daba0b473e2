#pragma once

#include "platform/scripts.h"

namespace keyvora::x11 {

class CurrentTap;

/// Scripts by way of a program named `osascript` on PATH, which stands in for the AppleScript runtime: it
/// reads the source on standard input, says on standard error what went wrong, and ends with status 0 on
/// success.
class Scripts final : public platform::Scripts {
 public:
  explicit Scripts(CurrentTap& tap) : tap_(tap) {}

  platform::ScriptOutcome run(const std::string& source) override;

 private:
  CurrentTap& tap_;
};

}  // namespace keyvora::x11
