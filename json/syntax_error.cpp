#include "json/syntax_error.h"

#include <array>
#include <cstdio>

#include "text/utf8.h"

namespace keyvora::json {
namespace {

/// The character at an offset as it can be shown on a line: itself, or its number when it does not print.
std::string shown(std::string_view text, std::size_t offset) {
  if (offset >= text.size()) return "the end of the document";
  const auto codePoint = text::firstCodePoint(text.substr(offset));
  if (codePoint.value > 0x20 && codePoint.value < 0x7F) return {'\'', text[offset], '\''};
  std::array<char, 16> number{};
  std::snprintf(number.data(), number.size(), "U+%04X", static_cast<unsigned>(codePoint.value));
  return number.data();
}

std::string expected(std::string_view what, std::string_view text, std::size_t offset) {
  const char found = offset < text.size() ? text[offset] : '\0';
  if (found == '/' || found == '#') return "comments are not allowed";
  return "expected " + std::string(what) + ", found " + shown(text, offset);
}

std::string misplacedValue(std::string_view text, std::size_t offset) {
  const bool singleQuote = offset < text.size() && text[offset] == '\'';
  if (singleQuote) return "strings are written in double quotes";
  return expected("a value", text, offset);
}

std::string misplacedInString(std::string_view text, std::size_t offset) {
  if (offset < text.size() && text[offset] == '\\') {
    return "no escape starts with a backslash and " + shown(text, offset + 1);
  }
  return "a control character in a string is written as an escape, found " + shown(text, offset);
}

}  // namespace

std::string syntaxErrorReason(rapidjson::ParseErrorCode code, std::string_view text, std::size_t offset) {
  switch (code) {
    case rapidjson::kParseErrorDocumentEmpty:
      return offset < text.size() ? misplacedValue(text, offset) : "the document is empty";
    case rapidjson::kParseErrorDocumentRootNotSingular:
      return expected("nothing more after the document", text, offset);
    case rapidjson::kParseErrorValueInvalid:
      return misplacedValue(text, offset);
    case rapidjson::kParseErrorObjectMissName:
      return expected("a key in double quotes", text, offset);
    case rapidjson::kParseErrorObjectMissColon:
      return expected("a colon after the key", text, offset);
    case rapidjson::kParseErrorObjectMissCommaOrCurlyBracket:
      return expected("a comma or '}'", text, offset);
    case rapidjson::kParseErrorArrayMissCommaOrSquareBracket:
      return expected("a comma or ']'", text, offset);
    case rapidjson::kParseErrorStringUnicodeEscapeInvalidHex:
      return "\\u takes four hexadecimal digits";
    case rapidjson::kParseErrorStringUnicodeSurrogateInvalid:
      return "half of a surrogate pair is no character";
    case rapidjson::kParseErrorStringEscapeInvalid:
    case rapidjson::kParseErrorStringInvalidEncoding:  // what versions after 1.1.0 call a control character
      return misplacedInString(text, offset);
    case rapidjson::kParseErrorStringMissQuotationMark:
      return offset < text.size() ? misplacedInString(text, offset) : "the string has no end";
    case rapidjson::kParseErrorNumberMissFraction:
      return expected("a digit after the decimal point", text, offset);
    case rapidjson::kParseErrorNumberMissExponent:
      return expected("a digit in the exponent", text, offset);
    default:
      return "malformed number";
  }
}

}  // namespace keyvora::json
