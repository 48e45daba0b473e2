#pragma once

#include <optional>
#include <string>

#include "platform/main_loop.h"

namespace keyvora::appcast {

/// What is remembered of update checks from one run to the next. Main thread. A failure to store is
/// ignored.
class History {
 public:
  virtual ~History() = default;

  /// Time since the last recorded check; none before the first, or when the clock was set back.
  virtual std::optional<platform::Seconds> sinceLastCheck() = 0;
  virtual void recordCheck() = 0;

  /// The version that the user chose to skip; empty for none.
  virtual std::string skippedVersion() = 0;
  virtual void skipVersion(const std::string& version) = 0;
};

}  // namespace keyvora::appcast
