#pragma once

#include <string_view>

namespace keyvora::platform {

/// Ends the process at once after writing "Fatal error: " and the message to standard error. For a broken
/// invariant, or a missing part that the program cannot work without. Any thread.
[[noreturn]] void fatal(std::string_view message);

/// Ends the process at once, without a message. Any thread.
[[noreturn]] void trap();

/// Fatal unless called on the main thread of the current host; `what` names the caller.
void requireMainThread(std::string_view what);

}  // namespace keyvora::platform
