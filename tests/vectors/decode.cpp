#include "mapping/decode.h"

#include "mapping/encode.h"
#include "tests/vectors/line.h"

namespace keyvora::vectors {
namespace {

rapidjson::Document parsed(const std::string& json) {
  rapidjson::Document document;
  document.Parse(json.data(), json.size());
  if (document.HasParseError()) throw MalformedLine("not JSON: " + json);
  return document;
}

std::string described(const DecodingError& error) {
  return std::string(nameOf(error.kind)) + " at \"" + describe(error.path) + "\": " + error.description;
}

/// Whether a coding path equals that of a line, which is a list of strings and indices.
bool samePath(const CodingPath& path, const Line& expected) {
  if (path.size() != expected.Size()) return false;
  for (rapidjson::SizeType i = 0; i < expected.Size(); ++i) {
    const auto element = expected[i].IsString()
                             ? PathElement(asString(expected[i]))
                             : PathElement(static_cast<std::size_t>(asInteger(expected[i])));
    if (path[i] != element) return false;
  }
  return true;
}

std::optional<Mismatch> checkFailure(const DecodingError& error, const Line& line,
                                     const std::string& expect) {
  const auto path = line.FindMember("path");
  const auto text = line.FindMember("text");
  const bool kindAgrees = expect == "reject" || expect == nameOf(error.kind);
  const bool pathAgrees = path == line.MemberEnd() || samePath(error.path, path->value);
  const bool textAgrees = text == line.MemberEnd() || error.description == asString(text->value);
  if (kindAgrees && pathAgrees && textAgrees) return {};
  std::string expected = expect;
  if (path != line.MemberEnd()) expected += " at " + shown(path->value);
  if (text != line.MemberEnd()) expected += ": " + asString(text->value);
  return Mismatch{expected, described(error)};
}

/// Compares the decoded mapping by encoding it again, and checks that the encoding decodes to an equal
/// mapping.
std::optional<Mismatch> checkMapping(const Mapping& mapping, const Line& line) {
  const auto expected = stringField(line, "document");
  const auto actual = encode(mapping);
  const auto again = decode(actual);
  if (parsed(expected) == parsed(actual) && std::holds_alternative<Mapping>(again) &&
      std::get<Mapping>(again) == mapping) {
    return {};
  }
  return Mismatch{expected, actual};
}

}  // namespace

/// A document's `bytes` in base64 and the result to `expect`: `ok` with the `document` as it is encoded
/// again, or the kind of failure (`reject`: any) with `path` and exact `text` if given.
std::optional<Mismatch> checkDecode(const Line& line) {
  const auto expect = stringField(line, "expect");
  const auto result = decode(fromBase64(stringField(line, "bytes")));
  if (const auto* error = std::get_if<DecodingError>(&result)) {
    if (expect == "ok") return Mismatch{"ok", described(*error)};
    return checkFailure(*error, line, expect);
  }
  const auto& mapping = std::get<Mapping>(result);
  if (expect != "ok") return Mismatch{expect, "ok: " + encode(mapping)};
  return checkMapping(mapping, line);
}

}  // namespace keyvora::vectors
