#pragma once

#include <cstddef>

/// What a feed may have. A feed is read on the main thread, where keys wait: none, whatever it was made for,
/// may take long. The limits are far beyond what a feed needs.
namespace keyvora::appcast {

inline constexpr std::size_t maxFeedBytes = 1024 * 1024;
inline constexpr std::size_t maxItems = 1000;

/// Child elements of one item, and of all items together.
inline constexpr std::size_t maxChildren = 200;
inline constexpr std::size_t maxAllChildren = 10'000;

/// Attributes of one element that are looked at.
inline constexpr std::size_t maxAttributes = 32;

/// The prefix of a name, which stands for a namespace, and the name behind it.
inline constexpr std::size_t maxPrefixLength = 64;

inline constexpr std::size_t maxVersionLength = 100;
inline constexpr std::size_t maxAddressLength = 2048;

/// Notes that stand in the feed itself; longer ones are not shown.
inline constexpr std::size_t maxNotesLength = 16 * 1024;

}  // namespace keyvora::appcast
