#pragma once

#include <string>

namespace keyvora::rig {

/// The result of a check.
enum class Feed { update, nothing, unreachable };

/// Every check has this result from now on.
void setFeed(Feed feed);

/// Answers the silent check that was begun. Main thread.
void answerCheck();

}  // namespace keyvora::rig
