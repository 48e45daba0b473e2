#pragma once

#include <string>

namespace keyvora::rig {

/// What the next silent check finds.
enum class Feed { update, nothing, unreachable };

void setFeed(Feed feed);

}  // namespace keyvora::rig
