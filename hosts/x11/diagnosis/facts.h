#pragma once

#include <string_view>
#include <vector>

#include "hosts/x11/applications/applications.h"
#include "hosts/x11/display.h"
#include "platform/diagnosis.h"

namespace keyvora::x11 {

/// The keyboard's layouts as they were chosen, with their options; empty when nobody said.
std::string chosenLayout(Connection& connection);

/// The language that a process shows itself in, by its environment: "de_DE.UTF-8"; empty when that cannot be
/// read.
std::string languageOf(platform::ProcessIdentifier process);

/// What is known of the display.
std::vector<platform::Fact> displayFacts(Connection& connection);

/// What is known of the programs that sequences need: the one for scripts, and the target.
std::vector<platform::Fact> programFacts(Applications& applications, std::string_view target);

}  // namespace keyvora::x11
