#include <utf8proc.h>

#include <algorithm>
#include <iterator>
#include <span>

#include "text/special_casing.h"
#include "text/text.h"
#include "text/utf8.h"

namespace keyvora::text {
namespace {

using SimpleCasing = utf8proc_int32_t (*)(utf8proc_int32_t);

void appendCased(std::string& result, char32_t codePoint, SimpleCasing simple,
                 std::span<const SpecialCasing> special) {
  const auto found = std::ranges::lower_bound(special, codePoint, {}, &SpecialCasing::codePoint);
  if (found == special.end() || found->codePoint != codePoint) {
    append(result, static_cast<char32_t>(simple(static_cast<utf8proc_int32_t>(codePoint))));
    return;
  }
  for (const char32_t mapped : found->mapped) {
    if (mapped != 0) append(result, mapped);
  }
}

std::string cased(std::string_view text, char first, char last, SimpleCasing simple,
                  std::span<const SpecialCasing> special) {
  constexpr char caseBit = 'a' ^ 'A';
  std::string result;
  result.reserve(text.size());
  while (!text.empty()) {
    const char byte = text.front();
    if (static_cast<unsigned char>(byte) < 0x80) {
      result.push_back(byte >= first && byte <= last ? static_cast<char>(byte ^ caseBit) : byte);
      text.remove_prefix(1);
    } else {
      const CodePoint codePoint = firstCodePoint(text);
      appendCased(result, codePoint.value, simple, special);
      text.remove_prefix(codePoint.length);
    }
  }
  return result;
}

}  // namespace

std::string upperCased(std::string_view text) {
  return cased(text, 'a', 'z', utf8proc_toupper, specialUpperCasing);
}

std::string lowerCased(std::string_view text) {
  return cased(text, 'A', 'Z', utf8proc_tolower, specialLowerCasing);
}

}  // namespace keyvora::text
