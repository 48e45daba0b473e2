#pragma once

#include <cstdint>

namespace keyvora {

/// User data of every event that the program posts. The tap recognises the program's own events by it.
inline constexpr std::int64_t ownEventMarker = 0x5E7A91C3;

}  // namespace keyvora
