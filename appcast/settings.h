#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace keyvora::appcast {

/// How updates are looked for: values of the bundle's information dictionary, under the keys that Sparkle
/// reads.
struct Settings {
  /// SUFeedURL; empty when the bundle has none.
  std::string feedAddress;
  /// CFBundleVersion and CFBundleShortVersionString.
  std::string version;
  std::string displayVersion;
  /// SUEnableAutomaticChecks: whether checks run on a schedule.
  bool checksAutomatically = false;
  /// SUScheduledCheckInterval, at least an hour.
  std::chrono::seconds checkInterval{24 * 60 * 60};
  /// How long one fetch may take.
  std::chrono::seconds fetchTimeout{30};
  /// The user's languages, the preferred first.
  std::vector<std::string> languages;
};

}  // namespace keyvora::appcast
