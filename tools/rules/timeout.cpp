#include "mapping/document_keys.h"
#include "tools/rules/rules.h"

namespace keyvora::tools::rule {
namespace {

/// A wait longer than this, in milliseconds, is probably a mistake.
constexpr std::int64_t longestWait = 10'000;

}  // namespace

void timeouts(const Document& document, std::string_view name, Findings& findings) {
  const auto wait = document.mapping().timeoutMilliseconds;
  if (!wait) return;
  std::string text;
  if (*wait <= 0) {
    text =
        "leaves no time between letters: sequences of more than one letter cannot be typed; write 1500, or "
        "leave the field out";
  } else if (*wait > longestWait) {
    text = "is longer than 10 seconds; the unit is a thousandth of a second: write 1500 for 1.5 seconds";
  } else {
    return;
  }
  warn(findings, name, document.root()->find(key::timeoutMilliseconds).value(),
       {std::string(key::timeoutMilliseconds)}, std::move(text));
}

}  // namespace keyvora::tools::rule
