#include "mapping/decoding_error.h"
#include "text/ascii.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

namespace keyvora {
namespace {

constexpr std::size_t longestKey = 60;

bool isPlainKey(std::string_view key) {
  const auto letter = [](char c) { return text::isAsciiLetter(c) || c == '_'; };
  const auto plain = [&](char c) { return letter(c) || text::isAsciiDigit(c); };
  return !key.empty() && key.size() <= longestKey && letter(key.front()) && std::ranges::all_of(key, plain);
}

/// The key in quotes; characters that would break the line are escaped.
std::string quoted(std::string_view key) {
  const bool cut = key.size() > longestKey;
  if (cut) {
    std::size_t end = longestKey;
    while ((static_cast<unsigned char>(key[end]) & 0xC0) == 0x80) --end;
    key = key.substr(0, end);
  }
  std::string result = "\"";
  for (const char c : key) {
    if (c == '"' || c == '\\') {
      result += {'\\', c};
    } else if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) {
      std::array<char, 8> escape{};
      std::snprintf(escape.data(), escape.size(), "\\u%04x", static_cast<unsigned>(c));
      result += escape.data();
    } else {
      result += c;
    }
  }
  return result + (cut ? "…\"" : "\"");
}

std::string at(json::Position position) {
  return " (line " + std::to_string(position.line) + ", column " + std::to_string(position.column) + ")";
}

}  // namespace

std::string describe(const CodingPath& path) {
  std::string result;
  for (const PathElement& element : path) {
    if (const auto* index = std::get_if<std::size_t>(&element)) {
      result.append("[").append(std::to_string(*index)).append("]");
    } else if (const auto& key = std::get<std::string>(element); isPlainKey(key)) {
      result.append(result.empty() ? "" : ".").append(key);
    } else {
      result.append("[").append(quoted(key)).append("]");
    }
  }
  return result;
}

std::string_view nameOf(DecodingError::Kind kind) {
  switch (kind) {
    case DecodingError::Kind::dataCorrupted:
      return "dataCorrupted";
    case DecodingError::Kind::keyNotFound:
      return "keyNotFound";
    case DecodingError::Kind::valueNotFound:
      return "valueNotFound";
    case DecodingError::Kind::typeMismatch:
      return "typeMismatch";
  }
  return {};
}

DecodingError decodingError(const json::SyntaxError& error) {
  return decodingError(DecodingError::Kind::dataCorrupted, {}, "not valid JSON: " + error.reason,
                       error.position);
}

DecodingError decodingError(DecodingError::Kind kind, CodingPath path, std::string reason,
                            json::Position position) {
  const std::string where = describe(path);
  std::string description = (where.empty() ? "" : where + ": ") + reason + at(position);
  return {kind, std::move(path), std::move(reason), std::move(description), position};
}

DecodingError unknownKindError(CodingPath path, std::string_view kind, json::Position position) {
  const std::string reason = "unknown action kind " + std::string(kind);
  return {DecodingError::Kind::dataCorrupted, std::move(path), reason, reason, position};
}

}  // namespace keyvora
