#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// UTF-8, code point by code point. Pure functions, any thread.
namespace keyvora::text {

/// The replacement for ill-formed bytes.
inline constexpr char32_t replacementCharacter = U'\uFFFD';

/// A code point and the bytes it takes.
struct CodePoint {
  char32_t value;
  std::size_t length;
  bool wellFormed;
};

/// The first code point of `text`, which must not be empty. An incomplete sequence counts as one U+FFFD for
/// its longest valid start; so does a byte that starts no sequence.
CodePoint firstCodePoint(std::string_view text);

/// How many bytes from the start are well-formed UTF-8.
std::size_t wellFormedPrefix(std::string_view text);

/// Whether all of it is well-formed UTF-8.
inline bool isWellFormed(std::string_view text) {
  return wellFormedPrefix(text) == text.size();
}

/// The text for a toolkit that takes C strings: ill-formed parts and zero bytes become U+FFFD.
std::string validText(std::string_view text);

/// Appends a code point, which is not a surrogate and at most U+10FFFF.
void append(std::string& text, char32_t codePoint);

}  // namespace keyvora::text
