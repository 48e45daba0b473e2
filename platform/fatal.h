#pragma once

#include <string_view>

namespace keyvora::platform {

/// Ends the process on the spot after writing "Fatal error: " and the message to standard error: a broken
/// invariant, or a part that the program cannot do without. Any thread.
[[noreturn]] void fatal(std::string_view message);

/// Ends the process on the spot, without a word. Any thread.
[[noreturn]] void trap();

/// Fatal unless called on the main thread of the current host; `what` names the caller.
void requireMainThread(std::string_view what);

}  // namespace keyvora::platform
