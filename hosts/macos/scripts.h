#pragma once

#include "platform/scripts.h"

namespace keyvora::macos {

/// NSAppleScript, a new object for every run. Main thread.
class Scripts final : public platform::Scripts {
 public:
  platform::ScriptOutcome run(const std::string& source) override;
};

}  // namespace keyvora::macos
