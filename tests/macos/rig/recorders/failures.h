#pragma once

#include <string>
#include <string_view>

namespace keyvora::rig {

/// From now on the call fails, `times` times, or always if `times` is negative.
void failFrom(const std::string& call, int times);

/// Whether the call must fail this time. Any thread.
bool fails(std::string_view call);

}  // namespace keyvora::rig
