#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "json/tree.h"
#include "mapping/decode.h"

namespace keyvora::tools {

enum class Severity {
  /// The application would reject the document.
  error,
  /// The document loads, and something in it would surprise.
  warning,
};

std::string_view nameOf(Severity severity);

/// One thing to say about a document.
struct Finding {
  Severity severity = Severity::warning;
  json::Position position;
  /// To the value or key concerned; empty for the document as a whole.
  std::string path;
  /// What is wrong and what to do.
  std::string text;
  /// The rule that found it: for programs that read findings.
  std::string_view rule;

  friend bool operator==(const Finding&, const Finding&) = default;
};

using Findings = std::vector<Finding>;

/// Adds a warning about a value or key of the document.
void warn(Findings& findings, std::string_view rule, const json::Value& at, const CodingPath& path,
          std::string text);

/// Sorts by place in the document; what stands at one place keeps its order.
void sortByPlace(Findings& findings);

}  // namespace keyvora::tools
