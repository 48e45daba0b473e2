#pragma once

#include <string>
#include <string_view>

namespace keyvora::rig {

/// From now on the call fails: `times` times, or for ever when that is negative.
void failFrom(const std::string& call, int times);

/// Whether the call is to fail this time. Any thread.
bool fails(std::string_view call);

}  // namespace keyvora::rig
