// Any bytes as a document: nothing crashes, an error is one line of well-formed text, and where another
// JSON parser has the same dialect, both give the same result.

#include "mapping/decode.h"

#include <algorithm>
#include <charconv>
#include <set>

#include "fuzz/decode/second_parser.h"
#include "fuzz/input.h"
#include "text/text.h"

namespace keyvora::fuzz {
namespace {

/// A number in the form of the second parser.
std::string numberWord(std::string_view text) {
  if (text.find_first_of(".eE") != text.npos) return "fraction";
  if (text.starts_with('-')) {
    std::int64_t value = 0;
    const auto parsed = std::from_chars(text.data(), text.data() + text.size(), value);
    return parsed.ec == std::errc() ? "number " + std::to_string(value) : "fraction";
  }
  std::uint64_t value = 0;
  const auto parsed = std::from_chars(text.data(), text.data() + text.size(), value);
  return parsed.ec == std::errc() ? "number " + std::to_string(value) : "fraction";
}

/// Converts our tree to the second parser's words, and notes content that the second decoder does not
/// support.
struct Reader {
  Words words;
  bool plain = true;

  void read(const json::Value& value) {
    switch (value.type()) {
      case json::Type::null:
      case json::Type::boolean:
        words.emplace_back(value.text());
        break;
      case json::Type::number:
        words.push_back(numberWord(value.text()));
        if (words.back() == "fraction") plain = false;
        break;
      case json::Type::string:
        words.push_back("text " + std::string(value.text()));
        break;
      case json::Type::array:
        words.emplace_back("[");
        for (const auto element : value.elements()) read(element);
        words.emplace_back("]");
        break;
      case json::Type::object:
        readMembers(value);
        break;
    }
  }

  void readMembers(const json::Value& value) {
    std::set<std::string_view> keys;
    words.emplace_back("{");
    for (const auto member : value.members()) {
      const auto key = member.key.text();
      if (!text::isAscii(key) || !keys.insert(key).second) plain = false;
      words.push_back("key " + std::string(key));
      read(member.value);
    }
    words.emplace_back("}");
  }
};

/// Whether the second parser supports the document: it knows UTF-8 only, and takes a zero byte for the end.
bool isComparable(std::string_view bytes) {
  return isWellFormed(bytes) && bytes.find('\0') == bytes.npos;
}

/// The document without the trailing commas that our dialect allows.
std::string withoutTrailingCommas(std::string_view text) {
  std::string result;
  bool inString = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (inString && c == '\\' && i + 1 < text.size()) {
      result += c;
      result += text[++i];
      continue;
    }
    if (c == '"') inString = !inString;
    if (c == ',' && !inString) {
      const auto next = text.find_first_not_of(" \t\r\n", i + 1);
      if (next != text.npos && (text[next] == ']' || text[next] == '}')) continue;
    }
    result += c;
  }
  return result;
}

void compareSyntax(std::string_view bytes, const std::variant<json::Tree, json::SyntaxError>& parsed) {
  if (const auto* error = std::get_if<json::SyntaxError>(&parsed)) {
    if (!isComparable(bytes)) return;
    const bool limited = error->reason.find("nest more than") != error->reason.npos;
    require(limited || !readAgain(bytes).accepted, "what the second parser takes, we take");
    return;
  }
  if (!isComparable(bytes)) return;
  const auto strict = withoutTrailingCommas(bytes);
  const auto second = readAgain(strict);
  if (second.numberTooLarge) return;
  Reader reader;
  reader.read(std::get<json::Tree>(parsed).root());
  require(second.accepted, "what we take, the second parser takes but for trailing commas");
  require(second.words == reader.words, "both parsers read the same");
  if (!reader.plain) return;
  const auto ours = decode(bytes);
  const auto theirs = decodeAgain(strict);
  require(std::holds_alternative<Mapping>(ours) == theirs.has_value(),
          "both decoders agree on what is a mapping");
  if (theirs) require(std::get<Mapping>(ours) == *theirs, "both decoders give the same mapping");
}

void check(std::string_view bytes) {
  const auto parsed = json::Tree::parse(bytes);
  const auto decoded = decode(bytes);
  if (const auto* error = std::get_if<DecodingError>(&decoded)) {
    require(!error->description.empty() && isWellFormed(error->description), "an error says what it is");
    const bool unknownKind = error->description.starts_with("unknown action kind ");
    require(unknownKind || error->description.find('\n') == std::string::npos, "an error is one line");
    require(error->position.line >= 1 && error->position.column >= 1, "an error has a place");
  }
  compareSyntax(bytes, parsed);
}

}  // namespace
}  // namespace keyvora::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  keyvora::fuzz::check({reinterpret_cast<const char*>(data), size});
  return 0;
}
