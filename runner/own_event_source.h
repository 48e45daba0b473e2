#pragma once

#include <memory>
#include <mutex>

#include "platform/keyboard.h"

namespace keyvora {

/// The source of all events that the program posts, marked as its own. Any thread.
class OwnEventSource {
 public:
  /// The source, made on the first call; null for good when it could not be made then.
  const platform::EventSource* get();

 private:
  std::once_flag made_;
  std::unique_ptr<platform::EventSource> source_;
};

}  // namespace keyvora
