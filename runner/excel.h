#pragma once

#include <optional>
#include <string_view>

#include "platform/applications.h"

/// The target application. Nothing is cached: each call asks the platform. Main thread.
namespace keyvora::Excel {

/// Bundle identifier of the target, compared exactly.
inline constexpr std::string_view bundleIdentifier = "com.microsoft.Excel";

/// The process of the running target: the first that the platform lists; none when it is not running.
std::optional<platform::ProcessIdentifier> app();

/// Whether the application in front is the target, whichever of its instances.
bool isFrontmost();

}  // namespace keyvora::Excel
