#include <utf8proc.h>

#include <algorithm>
#include <array>
#include <span>

#include "text/text.h"
#include "text/utf8.h"

namespace keyvora::text {
namespace {

struct Mark {
  utf8proc_int32_t codePoint;
  utf8proc_propval_t combiningClass;
};

/// The full canonical decomposition of a code point; at most 4 code points in any version of Unicode.
std::span<const utf8proc_int32_t> decomposition(char32_t codePoint, std::array<utf8proc_int32_t, 8>& room) {
  int boundary = 0;
  const auto count =
      utf8proc_decompose_char(static_cast<utf8proc_int32_t>(codePoint), room.data(),
                              static_cast<utf8proc_ssize_t>(room.size()), UTF8PROC_DECOMPOSE, &boundary);
  return {room.data(), static_cast<std::size_t>(std::max<utf8proc_ssize_t>(count, 0))};
}

/// Writes a run of marks in canonical order. Sorted here because the Unicode library takes quadratic time
/// for a long run.
void flush(std::string& result, std::vector<Mark>& marks) {
  if (marks.size() > 1) std::ranges::stable_sort(marks, {}, &Mark::combiningClass);
  for (const Mark& mark : marks) append(result, static_cast<char32_t>(mark.codePoint));
  marks.clear();
}

}  // namespace

std::string canonical(std::string_view text) {
  if (isAscii(text)) return std::string(text);
  std::string result;
  result.reserve(text.size() * 2);
  std::vector<Mark> marks;
  std::array<utf8proc_int32_t, 8> room{};
  while (!text.empty()) {
    const CodePoint codePoint = firstCodePoint(text);
    text.remove_prefix(codePoint.length);
    for (const auto part : decomposition(codePoint.value, room)) {
      const auto combiningClass = utf8proc_get_property(part)->combining_class;
      if (combiningClass == 0) {
        flush(result, marks);
        append(result, static_cast<char32_t>(part));
      } else {
        marks.push_back({part, combiningClass});
      }
    }
  }
  flush(result, marks);
  return result;
}

bool equal(std::string_view a, std::string_view b) {
  if (a == b) return true;
  if (isAscii(a) && isAscii(b)) return false;
  return canonical(a) == canonical(b);
}

}  // namespace keyvora::text
