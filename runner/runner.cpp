#include "runner/runner.h"

#include "platform/shared.h"
#include "runner/own_event_source.h"

namespace keyvora {

Runner& Runner::shared() {
  return platform::shared<Runner>([] { return std::make_unique<Runner>(); });
}

Runner::Runner() : source_(std::make_shared<OwnEventSource>()) {}

Runner::~Runner() = default;

}  // namespace keyvora
