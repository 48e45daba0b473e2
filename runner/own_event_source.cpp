#include "runner/own_event_source.h"

#include "platform/platform.h"
#include "runner/own_event_marker.h"

namespace keyvora {

const platform::EventSource* OwnEventSource::get() {
  std::call_once(made_, [this] {
    source_ = platform::current().keyboard.createSource();
    if (source_) source_->setUserData(ownEventMarker);
  });
  return source_.get();
}

}  // namespace keyvora
