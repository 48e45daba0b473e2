#include "tools/finding.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace keyvora::tools {

std::string_view nameOf(Severity severity) {
  return severity == Severity::error ? "error" : "warning";
}

void warn(Findings& findings, std::string_view rule, const json::Value& at, const CodingPath& path,
          std::string text) {
  findings.push_back({Severity::warning, at.position(), describe(path), std::move(text), rule});
}

void sortByPlace(Findings& findings) {
  std::ranges::stable_sort(findings, {}, [](const Finding& finding) {
    return std::tuple(finding.position.line, finding.position.column);
  });
}

}  // namespace keyvora::tools
