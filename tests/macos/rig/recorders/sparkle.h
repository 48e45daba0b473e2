#pragma once

#include <string>

namespace keyvora::rig {

/// What a check finds.
enum class Feed { update, nothing, unreachable };

/// Every check finds this from now on.
void setFeed(Feed feed);

/// The silent check that was begun has its answer. Main thread.
void answerCheck();

}  // namespace keyvora::rig
