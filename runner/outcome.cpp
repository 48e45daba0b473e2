#include "runner/outcome.h"

namespace keyvora::outcome {

std::string done(const std::string& name, const std::string& kind) {
  return name + " (" + kind + ")";
}

std::string failed(const std::string& name, const std::string& reason) {
  return name + " FAILED: " + reason;
}

std::string failedAt(const std::string& name, const std::string& place) {
  return name + " FAILED at " + place;
}

std::string noKeyCode(const std::string& name, const std::string& key) {
  return failed(name, "no key code for " + key);
}

}  // namespace keyvora::outcome
