#pragma once

#include <cstddef>

/// Limits of a feed. It is read on the main thread, while keys wait, so even a hostile feed must be read
/// quickly. The limits are far above what a real feed needs.
namespace keyvora::appcast {

inline constexpr std::size_t maxFeedBytes = std::size_t{1024} * 1024;
inline constexpr std::size_t maxItems = 1000;

/// Child elements of one item, and of all items together.
inline constexpr std::size_t maxChildren = 200;
inline constexpr std::size_t maxAllChildren = 10'000;

/// The attributes of one element that are read.
inline constexpr std::size_t maxAttributes = 32;

/// The prefix of a name, before the colon: it selects a namespace.
inline constexpr std::size_t maxPrefixLength = 64;

inline constexpr std::size_t maxVersionLength = 100;
inline constexpr std::size_t maxAddressLength = 2048;

/// Notes in the feed itself; longer ones are not shown.
inline constexpr std::size_t maxNotesLength = std::size_t{16} * 1024;

}  // namespace keyvora::appcast
