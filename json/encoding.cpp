#include "json/encoding.h"

#include <cstdint>

#include "text/utf8.h"

namespace keyvora::json {
namespace {

struct Encoding {
  /// Bytes of a code unit.
  std::size_t unit = 1;
  bool bigEndian = false;
  std::size_t markLength = 0;
};

/// Detects the encoding by the zeros among the first bytes: the first two characters of a document are
/// ASCII, or it is a single digit.
Encoding encodingByZeros(std::string_view bytes) {
  const auto zero = [&](std::size_t i) { return bytes[i] == '\0'; };
  if (bytes.size() >= 4) {
    if (zero(0) && zero(1) && zero(2) && !zero(3)) return {4, true};
    if (!zero(0) && zero(1) && zero(2) && zero(3)) return {4, false};
    if (zero(0) && !zero(1) && zero(2) && !zero(3)) return {2, true};
    if (!zero(0) && zero(1) && !zero(2) && zero(3)) return {2, false};
  } else if (bytes.size() == 2) {
    if (zero(0) && !zero(1)) return {2, true};
    if (!zero(0) && zero(1)) return {2, false};
  }
  return {};
}

Encoding encodingOf(std::string_view bytes) {
  using namespace std::string_view_literals;
  if (bytes.starts_with("\x00\x00\xFE\xFF"sv)) return {4, true, 4};
  if (bytes.starts_with("\xFE\xFF"sv)) return {2, true, 2};
  if (bytes.starts_with("\xFF\xFE"sv)) return {2, false, 2};
  if (bytes.starts_with("\xEF\xBB\xBF"sv)) return {1, false, 3};
  return encodingByZeros(bytes);
}

/// Reads code units of two or four bytes.
class Units {
 public:
  Units(std::string_view bytes, Encoding encoding) : bytes_(bytes), encoding_(encoding) {}

  [[nodiscard]] bool atEnd() const { return bytes_.empty(); }

  /// The next unit; none when fewer bytes are left than it has.
  std::optional<char32_t> next() {
    if (bytes_.size() < encoding_.unit) return {};
    char32_t unit = 0;
    for (std::size_t i = 0; i < encoding_.unit; ++i) {
      const std::size_t from = encoding_.bigEndian ? i : encoding_.unit - 1 - i;
      unit = (unit << 8) | static_cast<unsigned char>(bytes_[from]);
    }
    bytes_.remove_prefix(encoding_.unit);
    return unit;
  }

 private:
  std::string_view bytes_;
  Encoding encoding_;
};

bool isLeadSurrogate(char32_t unit) {
  return unit >= 0xD800 && unit <= 0xDBFF;
}
bool isTrailSurrogate(char32_t unit) {
  return unit >= 0xDC00 && unit <= 0xDFFF;
}

std::optional<char32_t> nextCodePoint(Units& units, bool pairs) {
  const auto unit = units.next();
  if (!unit || *unit > 0x10FFFF || isTrailSurrogate(*unit)) return {};
  if (!isLeadSurrogate(*unit)) return unit;
  const auto trail = pairs ? units.next() : std::nullopt;
  if (!trail || !isTrailSurrogate(*trail)) return {};
  return 0x10000 + ((*unit - 0xD800) << 10) + (*trail - 0xDC00);
}

}  // namespace

Utf8Document utf8Document(std::string_view bytes) {
  Utf8Document result;
  const Encoding encoding = encodingOf(bytes);
  bytes.remove_prefix(encoding.markLength);
  if (encoding.unit == 1) {
    result.bytes = bytes;
    const std::size_t good = text::wellFormedPrefix(bytes);
    if (good < bytes.size()) result.fault = good;
    return result;
  }
  result.converted.reserve(bytes.size() / encoding.unit);
  Units units(bytes, encoding);
  while (!units.atEnd()) {
    const auto codePoint = nextCodePoint(units, encoding.unit == 2);
    if (!codePoint) {
      result.fault = result.converted.size();
      break;
    }
    text::append(result.converted, *codePoint);
  }
  return result;
}

}  // namespace keyvora::json
