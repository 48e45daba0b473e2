#include "app/bundle_version.h"

namespace keyvora {

std::string version(const platform::Bundle& bundle) {
  return bundle.information("CFBundleShortVersionString").value_or("dev");
}

std::string build(const platform::Bundle& bundle) {
  return bundle.information("CFBundleVersion").value_or("0");
}

}  // namespace keyvora
