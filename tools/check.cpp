#include "tools/check.h"

#include "json/writer.h"
#include "tools/errors.h"
#include "tools/rules/rules.h"

namespace keyvora::tools {
namespace {

void member(json::Writer& writer, std::string_view key, std::string_view value) {
  writer.key(key);
  writer.string(value);
}

void member(json::Writer& writer, std::string_view key, std::size_t value) {
  writer.key(key);
  writer.number(static_cast<std::int64_t>(value));
}

}  // namespace

Findings check(const Document& document) {
  Findings findings;
  for (const auto& fault : document.faults()) findings.push_back(errorFor(fault));
  for (const auto& rule : rules()) rule.apply(document, rule.name, findings);
  sortByPlace(findings);
  return findings;
}

Findings errorsIn(const Document& document) {
  auto findings = check(document);
  std::erase_if(findings, [](const Finding& finding) { return finding.severity != Severity::error; });
  return findings;
}

std::string asText(const Findings& findings, std::string_view file) {
  std::string text;
  for (const auto& finding : findings) {
    text += std::string(file) + ":" + std::to_string(finding.position.line) + ":" +
            std::to_string(finding.position.column) + ": " + std::string(nameOf(finding.severity)) + ": " +
            (finding.path.empty() ? "" : finding.path + ": ") + finding.text + "\n";
  }
  return text;
}

std::string asJson(const Findings& findings, std::string_view file) {
  json::Writer writer;
  writer.beginObject();
  member(writer, "file", file);
  writer.key("findings");
  writer.beginArray();
  for (const auto& finding : findings) {
    writer.beginObject();
    member(writer, "severity", nameOf(finding.severity));
    member(writer, "rule", finding.rule);
    member(writer, "line", finding.position.line);
    member(writer, "column", finding.position.column);
    member(writer, "path", finding.path);
    member(writer, "text", finding.text);
    writer.endObject();
  }
  writer.endArray();
  writer.endObject();
  return writer.text() + "\n";
}

}  // namespace keyvora::tools
