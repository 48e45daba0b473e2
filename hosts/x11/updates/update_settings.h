#pragma once

#include "appcast/settings.h"
#include "platform/bundles.h"

namespace keyvora::x11 {

/// Reads the settings for updates from a bundle's information dictionary: SUFeedURL, CFBundleVersion,
/// CFBundleShortVersionString, SUEnableAutomaticChecks (absent: no), SUScheduledCheckInterval in seconds,
/// and keyvora's own KeyvoraUpdateTimeout, the time limit of one fetch in seconds. Main thread.
appcast::Settings updateSettings(const platform::Bundle& bundle);

}  // namespace keyvora::x11
