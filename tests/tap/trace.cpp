#include "tests/tap/trace.h"

#include <iomanip>

namespace keyvora::testing {

void PrintTo(const StepResult& result, std::ostream* out) {
  if (result.verdict) *out << (*result.verdict == platform::Verdict::pass ? "pass" : "swallow");
  for (const auto& happening : result.trace) {
    *out << " {";
    for (const char* separator = ""; const auto& word : happening) {
      *out << separator << std::quoted(word);
      separator = ", ";
    }
    *out << "}";
  }
}

}  // namespace keyvora::testing
