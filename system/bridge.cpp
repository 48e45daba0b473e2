#include "system/bridge.h"

#include "platform/fatal.h"
#include "platform/platform.h"

namespace keyvora {

void Bridge::didFindValidUpdate(const platform::UpdateItem& item) {
  platform::requireMainThread("Bridge::didFindValidUpdate");
  if (onProbe) onProbe("update " + item.displayVersionString + " (" + item.versionString + ")", 0);
}

void Bridge::didNotFindUpdate(const std::string&) {
  platform::requireMainThread("Bridge::didNotFindUpdate");
  if (onProbe) onProbe("current", 0);
}

void Bridge::didAbort(const std::string& errorDescription) {
  platform::requireMainThread("Bridge::didAbort");
  if (onProbe) onProbe("error " + errorDescription, 1);
}

bool Bridge::supportsGentleScheduledUpdateReminders() const {
  return true;
}

bool Bridge::shouldHandleShowingScheduledUpdate(const platform::UpdateItem&, bool) const {
  return true;
}

void Bridge::willHandleShowingUpdate(bool handleShowingUpdate, const platform::UpdateItem&) {
  if (!handleShowingUpdate) return;
  platform::requireMainThread("Bridge::willHandleShowingUpdate");
  auto& application = platform::current().application;
  application.setActivationPolicy(platform::ActivationPolicy::regular);
  application.activate();
}

void Bridge::willFinishUpdateSession() {
  platform::requireMainThread("Bridge::willFinishUpdateSession");
  platform::current().application.setActivationPolicy(platform::ActivationPolicy::accessory);
}

}  // namespace keyvora
