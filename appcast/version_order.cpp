#include "appcast/version_order.h"
#include "text/ascii.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

namespace keyvora::appcast {
namespace {

enum class Kind { number, text, period, dash, separator };

/// A run of characters of one kind; each separator is a part by itself.
struct Part {
  Kind kind;
  std::string_view text;
};

/// White space and the characters that Unicode calls punctuation; symbols such as + and ~ are not among
/// them.
bool isSeparator(char c) {
  return (c >= '\t' && c <= '\r') ||
         std::string_view(" !\"#%&'()*,-/:;?@[\\]_{}").find(c) != std::string_view::npos;
}

Kind kindOf(char c) {
  if (c == '.') return Kind::period;
  if (c == '-') return Kind::dash;
  if (text::isAsciiDigit(c)) return Kind::number;
  return isSeparator(c) ? Kind::separator : Kind::text;
}

bool isNumeric(const Part& part) {
  return part.kind == Kind::number || part.kind == Kind::period;
}

/// The parts up to the first dash; what follows it is not compared. A dash at the start is an ordinary
/// part.
std::vector<Part> split(std::string_view version) {
  version = version.substr(0, version.find('-', 1));
  std::vector<Part> parts;
  for (std::size_t i = 0; i < version.size(); ++i) {
    const Kind kind = kindOf(version[i]);
    const bool continues =
        (kind == Kind::number || kind == Kind::text) && !parts.empty() && parts.back().kind == kind;
    if (continues) {
      const auto& text = parts.back().text;
      parts.back().text = {text.data(), text.size() + 1};
    } else {
      parts.push_back({kind, version.substr(i, 1)});
    }
  }
  return parts;
}

/// Gives both the same number of leading numbers and periods, so that in 1.0 and 1.0.0 the parts behind
/// them are compared with each other: fills the shorter one with zeros in the shape of the longer.
void balance(std::vector<Part>& a, std::vector<Part>& b) {
  const auto numericEnd = [](std::vector<Part>& parts) { return std::ranges::find_if_not(parts, isNumeric); };
  const auto lengthA = numericEnd(a) - a.begin();
  const auto lengthB = numericEnd(b) - b.begin();
  auto& shorter = lengthA < lengthB ? a : b;
  const auto& longer = lengthA < lengthB ? b : a;
  for (auto i = std::min(lengthA, lengthB); i < std::max(lengthA, lengthB); ++i) {
    const auto& shape = longer[static_cast<std::size_t>(i)];
    shorter.insert(shorter.begin() + i, shape.kind == Kind::period ? shape : Part{Kind::number, "0"});
  }
}

/// Compares by value; values from 2^63-1 on are equal.
int compareNumbers(std::string_view a, std::string_view b) {
  static constexpr std::string_view greatest = "9223372036854775807";
  const auto value = [](std::string_view digits) {
    digits.remove_prefix(std::min(digits.find_first_not_of('0'), digits.size()));
    const bool saturates =
        digits.size() > greatest.size() || (digits.size() == greatest.size() && digits > greatest);
    return saturates ? greatest : digits;
  };
  const auto x = value(a);
  const auto y = value(b);
  if (x.size() != y.size()) return x.size() < y.size() ? -1 : 1;
  return x.compare(y);
}

int compareParts(const Part& a, const Part& b) {
  const bool textA = a.kind == Kind::text;
  const bool textB = b.kind == Kind::text;
  if (textA && textB) return a.text.compare(b.text);
  if (textA != textB) return textA ? -1 : 1;
  const bool numberA = a.kind == Kind::number;
  const bool numberB = b.kind == Kind::number;
  if (numberA && numberB) return compareNumbers(a.text, b.text);
  if (numberA != numberB) return numberA ? 1 : -1;
  // Only one of them is a dash: then `a` counts as older, whichever side has the dash.
  return (a.kind == Kind::dash) == (b.kind == Kind::dash) ? 0 : -1;
}

}  // namespace

int compareVersions(std::string_view a, std::string_view b) {
  auto partsA = split(a);
  auto partsB = split(b);
  balance(partsA, partsB);
  const auto common = std::min(partsA.size(), partsB.size());
  for (std::size_t i = 0; i < common; ++i) {
    if (const int order = compareParts(partsA[i], partsB[i]); order != 0) return order;
  }
  if (partsA.size() == partsB.size()) return 0;
  // Letters after the same version mark a pre-release (1.0b before 1.0); anything else marks a later
  // version.
  const bool aIsLonger = partsA.size() > partsB.size();
  const bool letters = (aIsLonger ? partsA : partsB)[common].kind == Kind::text;
  return aIsLonger == letters ? -1 : 1;
}

}  // namespace keyvora::appcast
