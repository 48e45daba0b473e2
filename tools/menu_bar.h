#pragma once

#include "hosts/simulated/accessibility.h"
#include "mapping/mapping.h"

namespace keyvora::tools {

/// A simulated menu bar with every item that the document's menu actions lead to. Each element's identifier
/// is the path of titles that leads to it, each title behind a slash.
simulated::TreeElementRef menuBarFor(const Mapping& mapping, simulated::Accessibility& accessibility);

}  // namespace keyvora::tools
