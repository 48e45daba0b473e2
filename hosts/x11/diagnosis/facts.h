#pragma once

#include <string_view>
#include <vector>

#include "hosts/x11/applications/applications.h"
#include "hosts/x11/display.h"
#include "platform/diagnosis.h"

namespace keyvora::x11 {

/// The configured keyboard layouts with their options; empty when they are unknown.
std::string chosenLayout(Connection& connection);

/// The language of a process's user interface, from its environment: "de_DE.UTF-8"; empty when that cannot
/// be read.
std::string languageOf(platform::ProcessIdentifier process);

/// Facts about the display.
std::vector<platform::Fact> displayFacts(Connection& connection);

/// Facts about the programs that sequences need: the one for scripts, and the target.
std::vector<platform::Fact> programFacts(Applications& applications, std::string_view target);

}  // namespace keyvora::x11
