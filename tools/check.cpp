#include "tools/check.h"

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include "tools/errors.h"
#include "tools/rules/rules.h"

namespace keyvora::tools {
namespace {

using Writer = rapidjson::Writer<rapidjson::StringBuffer>;

void member(Writer& writer, const char* key, std::string_view value) {
  writer.Key(key);
  writer.String(value.data(), static_cast<rapidjson::SizeType>(value.size()));
}

}  // namespace

Findings check(const Document& document) {
  Findings findings;
  for (const auto& fault : document.faults()) findings.push_back(errorFor(fault));
  for (const auto& rule : rules()) rule.apply(document, rule.name, findings);
  sortByPlace(findings);
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
  rapidjson::StringBuffer buffer;
  Writer writer(buffer);
  writer.StartObject();
  member(writer, "file", file);
  writer.Key("findings");
  writer.StartArray();
  for (const auto& finding : findings) {
    writer.StartObject();
    member(writer, "severity", nameOf(finding.severity));
    member(writer, "rule", finding.rule);
    writer.Key("line");
    writer.Uint64(finding.position.line);
    writer.Key("column");
    writer.Uint64(finding.position.column);
    member(writer, "path", finding.path);
    member(writer, "text", finding.text);
    writer.EndObject();
  }
  writer.EndArray();
  writer.EndObject();
  return std::string(buffer.GetString(), buffer.GetSize()) + "\n";
}

}  // namespace keyvora::tools
