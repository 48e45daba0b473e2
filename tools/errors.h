#pragma once

#include "mapping/decode.h"
#include "tools/finding.h"

namespace keyvora::tools {

/// The decoder's reason to reject a document, as a finding that also says how to correct it.
Finding errorFor(const DecodingError& error);

}  // namespace keyvora::tools
