#include "tests/vectors/line.h"

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

namespace keyvora::vectors {
namespace {

void require(bool condition, const Line& value, std::string_view type) {
  if (!condition) throw MalformedLine("expected " + std::string(type) + ", found " + shown(value));
}

}  // namespace

const Line& field(const Line& line, const char* name) {
  const auto member = line.FindMember(name);
  if (member == line.MemberEnd()) throw MalformedLine("no field \"" + std::string(name) + "\"");
  return member->value;
}

std::string asString(const Line& value) {
  require(value.IsString(), value, "a string");
  return {value.GetString(), value.GetStringLength()};
}

std::vector<std::string> asStrings(const Line& value) {
  require(value.IsArray(), value, "a list of strings");
  std::vector<std::string> result;
  for (const auto& element : value.GetArray()) result.push_back(asString(element));
  return result;
}

bool asBool(const Line& value) {
  require(value.IsBool(), value, "a boolean");
  return value.GetBool();
}

std::int64_t asInteger(const Line& value) {
  require(value.IsInt64(), value, "an integer");
  return value.GetInt64();
}

std::string stringField(const Line& line, const char* name) {
  return asString(field(line, name));
}

std::vector<std::string> stringsField(const Line& line, const char* name) {
  return asStrings(field(line, name));
}

bool boolField(const Line& line, const char* name) {
  return asBool(field(line, name));
}

std::string shown(const Line& value) {
  rapidjson::StringBuffer buffer;
  rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
  value.Accept(writer);
  return {buffer.GetString(), buffer.GetSize()};
}

std::string shown(const std::vector<std::string>& values) {
  rapidjson::StringBuffer buffer;
  rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
  writer.StartArray();
  for (const auto& value : values) {
    writer.String(value.data(), static_cast<rapidjson::SizeType>(value.size()));
  }
  writer.EndArray();
  return {buffer.GetString(), buffer.GetSize()};
}

std::string fromBase64(std::string_view text) {
  constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  while (text.ends_with('=')) text.remove_suffix(1);
  std::string result;
  unsigned bits = 0;
  int count = 0;
  for (const char c : text) {
    const auto digit = alphabet.find(c);
    if (digit == std::string_view::npos) throw MalformedLine("not base64");
    bits = (bits << 6) | static_cast<unsigned>(digit);
    count += 6;
    if (count < 8) continue;
    count -= 8;
    result.push_back(static_cast<char>((bits >> count) & 0xFF));
  }
  return result;
}

}  // namespace keyvora::vectors
