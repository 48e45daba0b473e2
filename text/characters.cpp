#include <utf8proc.h>

#include <algorithm>
#include <iterator>

#include "text/text.h"
#include "text/utf8.h"

namespace keyvora::text {
namespace {

/// Indic conjuncts: rule GB9c of UAX #29, which is newer than the Unicode library's data. Consonants joined
/// by a linker (a virama) are one character, with any joiners and marks between them.
class Conjunct {
 public:
  /// Takes the next code point. True if it continues a conjunct, so that there is no boundary before it.
  bool continues(char32_t codePoint) {
    if (isConsonant(codePoint)) {
      const bool joined = state_ == State::linked;
      state_ = State::consonant;
      return joined;
    }
    if (state_ == State::none) return false;
    if (isLinker(codePoint)) {
      state_ = State::linked;
    } else if (!isExtend(codePoint)) {
      state_ = State::none;
    }
    return false;
  }

 private:
  enum class State { none, consonant, linked };
  struct Range {
    char32_t first;
    char32_t last;
  };

  /// Indic_Conjunct_Break=Consonant in DerivedCoreProperties.txt of Unicode 15.1: the consonants of the
  /// Devanagari, Bengali, Gujarati, Oriya, Telugu and Malayalam scripts.
  static bool isConsonant(char32_t codePoint) {
    static constexpr Range consonants[] = {
        {0x0915, 0x0939}, {0x0958, 0x095F}, {0x0978, 0x097F}, {0x0995, 0x09A8}, {0x09AA, 0x09B0},
        {0x09B2, 0x09B2}, {0x09B6, 0x09B9}, {0x09DC, 0x09DD}, {0x09DF, 0x09DF}, {0x09F0, 0x09F1},
        {0x0A95, 0x0AA8}, {0x0AAA, 0x0AB0}, {0x0AB2, 0x0AB3}, {0x0AB5, 0x0AB9}, {0x0AF9, 0x0AF9},
        {0x0B15, 0x0B28}, {0x0B2A, 0x0B30}, {0x0B32, 0x0B33}, {0x0B35, 0x0B39}, {0x0B5C, 0x0B5D},
        {0x0B5F, 0x0B5F}, {0x0B71, 0x0B71}, {0x0C15, 0x0C28}, {0x0C2A, 0x0C39}, {0x0C58, 0x0C5A},
        {0x0D15, 0x0D3A},
    };
    const auto* found = std::ranges::lower_bound(consonants, codePoint, {}, &Range::last);
    return found != std::end(consonants) && codePoint >= found->first;
  }

  /// Indic_Conjunct_Break=Linker: the viramas of the same scripts.
  static bool isLinker(char32_t codePoint) {
    static constexpr char32_t linkers[] = {0x094D, 0x09CD, 0x0ACD, 0x0B4D, 0x0C4D, 0x0D4D};
    return std::ranges::find(linkers, codePoint) != std::end(linkers);
  }

  /// Indic_Conjunct_Break=Extend: the zero width joiner and the extending marks that have a combining class.
  static bool isExtend(char32_t codePoint) {
    const auto& properties = *utf8proc_get_property(static_cast<utf8proc_int32_t>(codePoint));
    if (properties.boundclass == UTF8PROC_BOUNDCLASS_ZWJ) return true;
    return properties.boundclass == UTF8PROC_BOUNDCLASS_EXTEND && properties.combining_class != 0;
  }

  State state_ = State::none;
};

/// The code point that the Unicode library is asked about. Some unassigned code points are reserved for
/// controls or pictographs, and UAX #29 treats them as such. The library does not, so an assigned one
/// replaces them.
utf8proc_int32_t forBoundaries(char32_t codePoint) {
  const auto given = static_cast<utf8proc_int32_t>(codePoint);
  if (codePoint < 0x2065 || utf8proc_category(given) != UTF8PROC_CATEGORY_CN) return given;
  const auto between = [&](char32_t first, char32_t last) { return codePoint >= first && codePoint <= last; };
  constexpr utf8proc_int32_t control = 0x0001;
  constexpr utf8proc_int32_t pictograph = 0x1F000;
  if (codePoint == 0x2065 || between(0xFFF0, 0xFFF8) || between(0xE0000, 0xE0FFF)) return control;
  if (between(0x1F000, 0x1FAFF) || between(0x1FC00, 0x1FFFD)) return pictograph;
  return given;
}

/// Finds the boundaries between characters, taking one code point at a time.
class Segmenter {
 public:
  explicit Segmenter(char32_t first) : previous_(forBoundaries(first)) { conjunct_.continues(first); }

  /// Takes the next code point. True if a character ends before it.
  bool endsBefore(char32_t codePoint) {
    const bool conjunct = conjunct_.continues(codePoint);
    const utf8proc_int32_t next = forBoundaries(codePoint);
    const bool boundary = utf8proc_grapheme_break_stateful(previous_, next, &state_);
    previous_ = next;
    return boundary && !conjunct;
  }

 private:
  utf8proc_int32_t previous_;
  utf8proc_int32_t state_ = 0;
  Conjunct conjunct_;
};

}  // namespace

std::vector<std::string> characters(std::string_view text) {
  std::vector<std::string> result;
  if (text.empty()) return result;
  CodePoint codePoint = firstCodePoint(text);
  Segmenter segmenter(codePoint.value);
  result.emplace_back();
  while (true) {
    append(result.back(), codePoint.value);
    text.remove_prefix(codePoint.length);
    if (text.empty()) return result;
    codePoint = firstCodePoint(text);
    if (segmenter.endsBefore(codePoint.value)) result.emplace_back();
  }
}

bool isWhiteSpace(std::string_view character) {
  if (character.empty()) return false;
  const char32_t c = firstCodePoint(character).value;
  return (c >= 0x09 && c <= 0x0D) || c == 0x20 || c == 0x85 || c == 0xA0 || c == 0x1680 ||
         (c >= 0x2000 && c <= 0x200A) || c == 0x2028 || c == 0x2029 || c == 0x202F || c == 0x205F ||
         c == 0x3000;
}

}  // namespace keyvora::text
