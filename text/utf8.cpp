#include "text/utf8.h"

#include <cstring>

namespace keyvora::text {
namespace {

/// The number of ASCII bytes at the start.
std::size_t asciiPrefix(std::string_view text) {
  constexpr std::uint64_t highBits = 0x8080808080808080;
  std::size_t i = 0;
  for (; i + sizeof(std::uint64_t) <= text.size(); i += sizeof(std::uint64_t)) {
    std::uint64_t word;
    std::memcpy(&word, text.data() + i, sizeof word);
    if ((word & highBits) != 0) break;
  }
  while (i < text.size() && static_cast<unsigned char>(text[i]) < 0x80) ++i;
  return i;
}

/// What follows a lead byte: how many bytes, and the range of the first of them, which excludes overlong
/// forms, surrogates and code points beyond U+10FFFF.
struct Lead {
  int following;
  unsigned char low = 0x80;
  unsigned char high = 0xBF;
};

Lead leadOf(unsigned char byte) {
  if (byte < 0xC2) return {0};
  if (byte < 0xE0) return {1};
  if (byte == 0xE0) return {2, 0xA0};
  if (byte == 0xED) return {2, 0x80, 0x9F};
  if (byte < 0xF0) return {2};
  if (byte == 0xF0) return {3, 0x90};
  if (byte < 0xF4) return {3};
  if (byte == 0xF4) return {3, 0x80, 0x8F};
  return {0};
}

}  // namespace

CodePoint firstCodePoint(std::string_view text) {
  const auto first = static_cast<unsigned char>(text.front());
  if (first < 0x80) return {first, 1, true};
  Lead lead = leadOf(first);
  if (lead.following == 0) return {replacementCharacter, 1, false};
  char32_t value = first & (0x3FU >> lead.following);
  std::size_t length = 1;
  for (; lead.following > 0; --lead.following, ++length) {
    if (length == text.size()) return {replacementCharacter, length, false};
    const auto byte = static_cast<unsigned char>(text[length]);
    if (byte < lead.low || byte > lead.high) return {replacementCharacter, length, false};
    value = (value << 6) | (byte & 0x3F);
    lead.low = 0x80;
    lead.high = 0xBF;
  }
  return {value, length, true};
}

std::size_t wellFormedPrefix(std::string_view text) {
  std::size_t i = 0;
  while (true) {
    i += asciiPrefix(text.substr(i));
    if (i == text.size()) return i;
    const CodePoint codePoint = firstCodePoint(text.substr(i));
    if (!codePoint.wellFormed) return i;
    i += codePoint.length;
  }
}

std::string validText(std::string_view text) {
  std::string valid;
  valid.reserve(text.size());
  while (!text.empty()) {
    const CodePoint codePoint = firstCodePoint(text);
    if (codePoint.wellFormed && codePoint.value != 0) {
      valid.append(text.substr(0, codePoint.length));
    } else {
      append(valid, replacementCharacter);
    }
    text.remove_prefix(codePoint.length);
  }
  return valid;
}

void append(std::string& text, char32_t codePoint) {
  const auto byte = [&](char32_t value) { text.push_back(static_cast<char>(value)); };
  if (codePoint < 0x80) {
    byte(codePoint);
  } else if (codePoint < 0x800) {
    byte(0xC0 | (codePoint >> 6));
    byte(0x80 | (codePoint & 0x3F));
  } else if (codePoint < 0x10000) {
    byte(0xE0 | (codePoint >> 12));
    byte(0x80 | ((codePoint >> 6) & 0x3F));
    byte(0x80 | (codePoint & 0x3F));
  } else {
    byte(0xF0 | (codePoint >> 18));
    byte(0x80 | ((codePoint >> 12) & 0x3F));
    byte(0x80 | ((codePoint >> 6) & 0x3F));
    byte(0x80 | (codePoint & 0x3F));
  }
}

}  // namespace keyvora::text
