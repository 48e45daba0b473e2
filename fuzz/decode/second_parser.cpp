#include "fuzz/decode/second_parser.h"

#include <limits>
#include <nlohmann/json.hpp>
#include <utility>

namespace keyvora::fuzz {
namespace {

using nlohmann::json;

/// Records the parser's events.
class Listener {
 public:
  SecondReading reading;

  bool null() { return add("null"); }
  bool boolean(bool value) { return add(value ? "true" : "false"); }
  bool number_integer(std::int64_t value) { return add("number " + std::to_string(value)); }
  bool number_unsigned(std::uint64_t value) { return add("number " + std::to_string(value)); }
  bool number_float(double, const std::string&) { return add("fraction"); }
  bool string(std::string& value) { return add("text " + value); }
  bool binary(json::binary_t&) { return false; }
  bool start_object(std::size_t) { return add("{"); }
  bool key(std::string& value) { return add("key " + value); }
  bool end_object() { return add("}"); }
  bool start_array(std::size_t) { return add("["); }
  bool end_array() { return add("]"); }
  bool parse_error(std::size_t, const std::string&, const json::exception& error) {
    constexpr int numberOverflow = 406;
    reading.numberTooLarge = error.id == numberOverflow;
    return false;
  }

 private:
  bool add(std::string word) {
    reading.words.push_back(std::move(word));
    return true;
  }
};

/// Thrown when the document is not a mapping.
struct NoMapping {};

const json& required(const json& object, const char* key) {
  const auto found = object.find(key);
  if (found == object.end() || found->is_null()) throw NoMapping();
  return *found;
}

std::string text(const json& value) {
  if (!value.is_string()) throw NoMapping();
  return value.get<std::string>();
}

std::vector<std::string> texts(const json& value) {
  if (!value.is_array()) throw NoMapping();
  std::vector<std::string> result;
  for (const auto& each : value) result.push_back(text(each));
  return result;
}

std::int64_t integer(const json& value) {
  if (value.is_number_unsigned()) {
    const auto number = value.get<std::uint64_t>();
    if (number > std::uint64_t{std::numeric_limits<std::int64_t>::max()}) throw NoMapping();
    return static_cast<std::int64_t>(number);
  }
  if (!value.is_number_integer()) throw NoMapping();
  return value.get<std::int64_t>();
}

const json& object(const json& value) {
  if (!value.is_object()) throw NoMapping();
  return value;
}

Action actionOf(const json& source) {
  const auto kind = text(required(object(source), "kind"));
  if (kind == "applescript") return action::AppleScript{text(required(source, "script"))};
  if (kind == "keystroke") {
    const auto modifiers = source.find("modifiers");
    const bool none = modifiers == source.end() || modifiers->is_null();
    return action::Keystroke{text(required(source, "key")),
                             none ? std::vector<std::string>() : texts(*modifiers)};
  }
  if (kind == "keytips") return action::KeyTips{text(required(source, "keys"))};
  if (kind == "menu") return action::Menu{texts(required(source, "path"))};
  throw NoMapping();
}

Mapping mappingOf(const json& source) {
  Mapping mapping;
  mapping.version = integer(required(object(source), "version"));
  if (const auto notes = source.find("notes"); notes != source.end() && !notes->is_null()) {
    mapping.notes = texts(*notes);
  }
  const auto timeout = source.find("timeoutMilliseconds");
  if (timeout != source.end() && !timeout->is_null()) mapping.timeoutMilliseconds = integer(*timeout);
  for (const auto& [key, value] : object(required(source, "tabs")).items()) {
    mapping.tabs.emplace(key, text(value));
  }
  const auto& sequences = required(source, "sequences");
  if (!sequences.is_array()) throw NoMapping();
  for (const auto& each : sequences) {
    object(each);
    mapping.sequences.push_back(
        {text(required(each, "keys")), text(required(each, "name")), actionOf(required(each, "action"))});
  }
  return mapping;
}

}  // namespace

SecondReading readAgain(std::string_view bytes) {
  Listener listener;
  listener.reading.accepted = json::sax_parse(bytes, &listener);
  return std::move(listener.reading);
}

std::optional<Mapping> decodeAgain(std::string_view bytes) {
  const auto document = json::parse(bytes, nullptr, false);
  try {
    return mappingOf(document);
  } catch (const NoMapping&) {
    return std::nullopt;
  }
}

}  // namespace keyvora::fuzz
