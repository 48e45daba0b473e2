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
  /// The document loads, but part of it may have an unexpected effect.
  warning,
};

std::string_view nameOf(Severity severity);

/// A remark about a document.
struct Finding {
  Severity severity = Severity::warning;
  json::Position position;
  /// The path of the value or key; empty for the document as a whole.
  std::string path;
  /// What is wrong and how to correct it.
  std::string text;
  /// The name of the rule, for programs that read findings.
  std::string_view rule;

  friend bool operator==(const Finding&, const Finding&) = default;
};

using Findings = std::vector<Finding>;

/// Adds a warning about a value or key of the document.
void warn(Findings& findings, std::string_view rule, const json::Value& at, const CodingPath& path,
          std::string text);

/// Sorts by position in the document; findings at the same position keep their order.
void sortByPlace(Findings& findings);

}  // namespace keyvora::tools
