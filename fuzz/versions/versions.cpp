// Three versions of any text: each equals itself, swapping two reverses their order, and ordinary versions
// (numbers, periods, letters of a pre-release) are totally ordered.

#include <algorithm>

#include "appcast/version_order.h"
#include "fuzz/input.h"

namespace keyvora::fuzz {
namespace {

int order(const std::string& a, const std::string& b) {
  const int result = appcast::compareVersions(a, b);
  return (result > 0) - (result < 0);
}

/// As in Sparkle, a leading dash against another separator counts as older on either side.
bool startsWithDash(const std::string& version) {
  return version.starts_with('-');
}

void checkPair(const std::string& a, const std::string& b) {
  if (startsWithDash(a) || startsWithDash(b)) return;
  require(order(a, b) == -order(b, a), "the order turns with the sides");
}

/// Groups of digits with single periods between them, and at most letters with a number at the end:
/// "1.10.2b3".
bool isPlain(const std::string& version) {
  const auto digit = [](char c) { return c >= '0' && c <= '9'; };
  std::size_t at = 0;
  while (true) {
    const auto start = at;
    while (at < version.size() && digit(version[at])) ++at;
    if (at == start) return false;
    if (at == version.size() || version[at] != '.') break;
    ++at;
  }
  while (at < version.size() && version[at] >= 'a' && version[at] <= 'z') ++at;
  return std::all_of(version.begin() + static_cast<std::ptrdiff_t>(at), version.end(), digit);
}

void check(const std::string& a, const std::string& b, const std::string& c) {
  for (const auto* each : {&a, &b, &c}) require(order(*each, *each) == 0, "a version equals itself");
  checkPair(a, b);
  checkPair(b, c);
  checkPair(a, c);
  if (!isPlain(a) || !isPlain(b) || !isPlain(c)) return;
  if (order(a, b) <= 0 && order(b, c) <= 0) {
    require(order(a, c) == std::min(order(a, b), order(b, c)), "plain versions are in one order");
  }
}

/// Text made of the characters that occur in versions.
std::string someVersion(FuzzedDataProvider& input) {
  static constexpr std::string_view characters = "0123456789....ab";
  std::string version;
  for (auto left = input.ConsumeIntegralInRange(1, 8); left > 0; --left) {
    version += characters[input.ConsumeIntegralInRange<std::size_t>(0, characters.size() - 1)];
  }
  return version;
}

}  // namespace
}  // namespace keyvora::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace keyvora::fuzz;
  FuzzedDataProvider input(data, size);
  const bool any = input.ConsumeBool();
  std::string versions[3];
  for (auto& each : versions) each = any ? input.ConsumeRandomLengthString(40) : someVersion(input);
  check(versions[0], versions[1], versions[2]);
  return 0;
}
