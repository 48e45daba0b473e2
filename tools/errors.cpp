#include "tools/errors.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <utility>
#include <variant>

#include "mapping/document_keys.h"
#include "tools/spelling.h"
#include "tools/wording.h"

namespace keyvora::tools {
namespace {

/// A key, and an example of how to write it with its value.
struct Example {
  std::string_view key;
  std::string_view text;
};

constexpr std::array examples{
    Example{key::version, R"("version": 1)"},
    Example{key::notes, R"("notes": ["..."])"},
    Example{key::timeoutMilliseconds, R"("timeoutMilliseconds": 1500)"},
    Example{key::tabs, R"("tabs": {"H": "Home"})"},
    Example{key::sequences, R"("sequences": [...])"},
    Example{key::keys, R"("keys": "HFC")"},
    Example{key::name, R"("name": "Font color")"},
    Example{key::action, R"("action": {"kind": "keystroke", "key": "b", "modifiers": ["command"]})"},
    Example{key::kind, R"("kind": "keystroke")"},
    Example{key::script, R"("script": "...")"},
    Example{key::key, R"("key": "b")"},
    Example{key::modifiers, R"("modifiers": ["command"])"},
    Example{key::path, R"("path": ["Format", "Cells..."])"},
};
constexpr std::string_view wholeDocument = R"({"version": 1, "tabs": {}, "sequences": [...]})";
constexpr std::string_view wholeSequence = R"({"keys": "HFC", "name": "Font color", "action": {...}})";

/// An example for the value at the end of a path, or for the value that contains it.
std::string_view exampleFor(const CodingPath& path) {
  if (path.empty()) return wholeDocument;
  const bool isSequence = path.size() == 2 && path[0] == PathElement(std::string(key::sequences));
  if (isSequence && std::holds_alternative<std::size_t>(path[1])) return wholeSequence;
  for (auto element = path.rbegin(); element != path.rend(); ++element) {
    const auto* key = std::get_if<std::string>(&*element);
    if (key == nullptr) continue;
    const auto example = std::ranges::find(examples, *key, &Example::key);
    if (example != examples.end()) return example->text;
  }
  return {};
}

bool isUnknownKind(const DecodingError& error) {
  return error.kind == DecodingError::Kind::dataCorrupted && !error.path.empty() &&
         error.path.back() == PathElement(std::string(key::kind));
}

std::string adviceOnKind(std::string_view reason) {
  const auto written = reason.substr(reason.rfind(' ') + 1);
  if (const auto meant = nearest(written, kind::all)) return "did you mean " + inQuotes(*meant) + "?";
  std::string kinds;
  for (const auto each : kind::all) {
    if (!kinds.empty()) kinds += each == kind::all.back() ? " and " : ", ";
    kinds += each;
  }
  return "there are " + kinds;
}

std::string advice(const DecodingError& error) {
  if (isUnknownKind(error)) return adviceOnKind(error.reason);
  const std::string example(exampleFor(error.path));
  if (error.kind == DecodingError::Kind::keyNotFound) return "add it, like " + example;
  // The text of a syntax error is complete.
  if (error.kind == DecodingError::Kind::dataCorrupted && error.path.empty()) return {};
  return "write it like " + example;
}

}  // namespace

Finding errorFor(const DecodingError& error) {
  const auto what = advice(error);
  return {Severity::error, error.position, describe(error.path),
          error.reason + (what.empty() ? "" : "; " + what), nameOf(error.kind)};
}

}  // namespace keyvora::tools
