#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// UTF-8, code point by code point. Pure functions, any thread.
namespace keyvora::text {

/// What stands in for ill-formed bytes.
inline constexpr char32_t replacementCharacter = U'\uFFFD';

/// A code point and the bytes it takes.
struct CodePoint {
  char32_t value;
  std::size_t length;
  bool wellFormed;
};

/// The code point that `text`, which is not empty, starts with. The longest start of a sequence that is never
/// completed counts as one U+FFFD, a byte that starts none as one too.
CodePoint firstCodePoint(std::string_view text);

/// How many bytes are well-formed UTF-8, from the start.
std::size_t wellFormedPrefix(std::string_view text);

/// Whether all of it is well-formed UTF-8.
inline bool isWellFormed(std::string_view text) {
  return wellFormedPrefix(text) == text.size();
}

/// The text as a toolkit that takes C strings can show it: what is ill-formed, and a zero byte, as U+FFFD.
std::string validText(std::string_view text);

/// Appends a code point, which is not a surrogate and at most U+10FFFF.
void append(std::string& text, char32_t codePoint);

}  // namespace keyvora::text
