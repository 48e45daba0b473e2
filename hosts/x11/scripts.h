#pragma once

#include <chrono>

#include "platform/scripts.h"

namespace keyvora::x11 {

class CurrentTap;

/// Runs scripts by a program named `osascript` on PATH, in place of the AppleScript runtime. It reads the
/// source from standard input, prints errors on standard error, and ends with status 0 on success. It is
/// ended with its whole process group when it exceeds the time limit, or when a signal that ends keyvora
/// comes.
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
