#pragma once

#include "appcast/settings.h"
#include "platform/bundles.h"

namespace keyvora::x11 {

/// Reads how to look for updates from a bundle's information dictionary: SUFeedURL, CFBundleVersion,
/// CFBundleShortVersionString, SUEnableAutomaticChecks (absent: no), SUScheduledCheckInterval in seconds, and
/// our own KeyvoraUpdateTimeout, the seconds that one fetch may take. Main thread.
appcast::Settings updateSettings(const platform::Bundle& bundle);

}  // namespace keyvora::x11
