#pragma once

#include <cstdint>

namespace keyvora {

/// User data of every event that the program posts, by which the tap knows its own.
inline constexpr std::int64_t ownEventMarker = 0x5E7A91C3;

}  // namespace keyvora
