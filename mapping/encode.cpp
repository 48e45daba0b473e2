#include "mapping/encode.h"

#include <map>
#include <string_view>
#include <variant>

#include "json/writer.h"
#include "mapping/document_keys.h"

namespace keyvora {
namespace {

/// Writes the model's values; members in the order of their keys.
class Encoder {
 public:
  std::string encode(const Mapping& mapping) {
    write(mapping);
    return writer_.text();
  }

 private:
  void write(std::string_view text) { writer_.string(text); }

  void write(std::int64_t number) { writer_.number(number); }

  template <typename Element>
  void write(const std::vector<Element>& elements) {
    writer_.beginArray();
    for (const auto& element : elements) write(element);
    writer_.endArray();
  }

  void write(const std::map<std::string, std::string, KeyOrder>& tabs) {
    const std::map<std::string_view, std::string_view> byBytes(tabs.begin(), tabs.end());
    writer_.beginObject();
    for (const auto& [key, value] : byBytes) member(key, value);
    writer_.endObject();
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
    writer_.beginObject();
    std::visit([&](const auto& one) { write(one); }, action);
    writer_.endObject();
  }

  void write(const Sequence& sequence) {
    writer_.beginObject();
    member(key::action, sequence.action);
    member(key::keys, sequence.keys);
    member(key::name, sequence.name);
    writer_.endObject();
  }

  void write(const Mapping& mapping) {
    writer_.beginObject();
    if (mapping.notes) member(key::notes, *mapping.notes);
    member(key::sequences, mapping.sequences);
    member(key::tabs, mapping.tabs);
    if (mapping.timeoutMilliseconds) member(key::timeoutMilliseconds, *mapping.timeoutMilliseconds);
    member(key::version, mapping.version);
    writer_.endObject();
  }

  template <typename Value>
  void member(std::string_view key, const Value& value) {
    writer_.key(key);
    write(value);
  }

  json::Writer writer_;
};

}  // namespace

std::string encode(const Mapping& mapping) {
  return Encoder().encode(mapping);
}

}  // namespace keyvora
