#pragma once

#include <memory>
#include <mutex>

#include "platform/keyboard.h"

namespace keyvora {

/// The event source of all events that the program posts; sets `ownEventMarker`. Any thread.
class OwnEventSource {
 public:
  /// The source, created on the first call; null on every call if it could not be created then.
  const platform::EventSource* get();

 private:
  std::once_flag made_;
  std::unique_ptr<platform::EventSource> source_;
};

}  // namespace keyvora
