#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

/// The string rules of the mapping document, which are those of the platform's own strings: full Unicode
/// case mapping without locale or context, user-perceived characters, canonical equivalence. Text is UTF-8;
/// ill-formed parts count as U+FFFD. Pure functions, any thread.
namespace keyvora::text {

/// Every code point replaced by its full upper-case mapping (the sharp s becomes two letters).
std::string upperCased(std::string_view text);

/// Every code point replaced by its full lower-case mapping; no final sigma.
std::string lowerCased(std::string_view text);

/// Splits into user-perceived characters: extended grapheme clusters of UAX #29.
std::vector<std::string> characters(std::string_view text);

/// Whether a character is white space: its first code point has the property White_Space.
bool isWhiteSpace(std::string_view character);

/// Whether all bytes are ASCII. Inline, because every fast path calls it first.
inline bool isAscii(std::string_view text) {
  const char* data = text.data();
  std::size_t size = text.size();
  std::uint64_t seen = 0;
  for (std::uint64_t word = 0; size >= sizeof word; data += sizeof word, size -= sizeof word) {
    std::memcpy(&word, data, sizeof word);
    seen |= word;
  }
  for (; size > 0; ++data, --size) seen |= static_cast<unsigned char>(*data);
  return (seen & 0x8080808080808080) == 0;
}

/// Whether two strings are canonically equivalent. ASCII strings are compared as bytes, without allocation.
bool equal(std::string_view a, std::string_view b);

/// The canonical decomposition (NFD). Strings are canonically equivalent exactly if these are the same.
std::string canonical(std::string_view text);

}  // namespace keyvora::text
