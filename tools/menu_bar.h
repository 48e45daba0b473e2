#pragma once

#include "hosts/simulated/accessibility.h"
#include "mapping/mapping.h"

namespace keyvora::tools {

/// A simulated menu bar with every item that the document's menu actions name. Each element's identifier is
/// its path of titles, with a slash before each title.
simulated::TreeElementRef menuBarFor(const Mapping& mapping, simulated::Accessibility& accessibility);

}  // namespace keyvora::tools
