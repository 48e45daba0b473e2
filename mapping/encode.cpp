#include "mapping/encode.h"

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <map>
#include <string_view>
#include <variant>

#include "mapping/document_keys.h"

namespace keyvora {
namespace {

/// Writes the model's values; members in the order of their keys.
class Encoder {
 public:
  std::string encode(const Mapping& mapping) {
    write(mapping);
    return {buffer_.GetString(), buffer_.GetSize()};
  }

 private:
  void write(std::string_view text) {
    writer_.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
  }

  void write(std::int64_t number) { writer_.Int64(number); }

  template <typename Element>
  void write(const std::vector<Element>& elements) {
    writer_.StartArray();
    for (const auto& element : elements) write(element);
    writer_.EndArray();
  }

  void write(const std::map<std::string, std::string, KeyOrder>& tabs) {
    const std::map<std::string_view, std::string_view> byBytes(tabs.begin(), tabs.end());
    writer_.StartObject();
    for (const auto& [key, value] : byBytes) member(key, value);
    writer_.EndObject();
  }

  void write(const action::AppleScript& action) {
    member(key::kind, kind::applescript);
    member(key::script, action.script);
  }

  void write(const action::Keystroke& action) {
    member(key::key, action.key);
    member(key::kind, kind::keystroke);
    member(key::modifiers, action.modifiers);
  }

  void write(const action::KeyTips& action) {
    member(key::keys, action.keys);
    member(key::kind, kind::keytips);
  }

  void write(const action::Menu& action) {
    member(key::kind, kind::menu);
    member(key::path, action.path);
  }

  void write(const Action& action) {
    writer_.StartObject();
    std::visit([&](const auto& one) { write(one); }, action);
    writer_.EndObject();
  }

  void write(const Sequence& sequence) {
    writer_.StartObject();
    member(key::action, sequence.action);
    member(key::keys, sequence.keys);
    member(key::name, sequence.name);
    writer_.EndObject();
  }

  void write(const Mapping& mapping) {
    writer_.StartObject();
    if (mapping.notes) member(key::notes, *mapping.notes);
    member(key::sequences, mapping.sequences);
    member(key::tabs, mapping.tabs);
    if (mapping.timeoutMilliseconds) member(key::timeoutMilliseconds, *mapping.timeoutMilliseconds);
    member(key::version, mapping.version);
    writer_.EndObject();
  }

  template <typename Value>
  void member(std::string_view key, const Value& value) {
    writer_.Key(key.data(), static_cast<rapidjson::SizeType>(key.size()));
    write(value);
  }

  rapidjson::StringBuffer buffer_;
  rapidjson::Writer<rapidjson::StringBuffer> writer_{buffer_};
};

}  // namespace

std::string encode(const Mapping& mapping) {
  return Encoder().encode(mapping);
}

}  // namespace keyvora
