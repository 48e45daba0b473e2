#include "mapping/decode.h"

#include <optional>
#include <utility>

#include "json/integer.h"
#include "mapping/document_keys.h"

namespace keyvora {
namespace {

using json::Type;
using json::Value;

/// The path to the value that is being decoded, kept on the stack. It becomes a `CodingPath` only when
/// there is a fault.
struct Path {
  const Path* parent = nullptr;
  std::variant<std::string_view, std::size_t> last;

  static CodingPath codingPath(const Path* path) {
    CodingPath result;
    for (; path != nullptr; path = path->parent) {
      if (const auto* index = std::get_if<std::size_t>(&path->last)) {
        result.insert(result.begin(), *index);
      } else {
        result.insert(result.begin(), std::string(std::get<std::string_view>(path->last)));
      }
    }
    return result;
  }
};

std::string_view withArticle(Type type) {
  switch (type) {
    case Type::null:
      return "null";
    case Type::boolean:
      return "a boolean";
    case Type::number:
      return "a number";
    case Type::string:
      return "a string";
    case Type::array:
      return "an array";
    case Type::object:
      return "an object";
  }
  return {};
}

std::string expected(Type type, Type found) {
  return std::string("expected ").append(withArticle(type)).append(", found ").append(withArticle(found));
}

/// A number, cut to a length that fits on a line.
std::string shortened(std::string_view number) {
  constexpr std::size_t longest = 40;
  if (number.size() <= longest) return std::string(number);
  return std::string(number.substr(0, longest)) + "…";
}

/// Decodes one tree. Every operation returns nothing for a faulty value, after reporting the fault to the
/// sink. When the sink asks to stop, nothing more is decoded.
class Decoder {
 public:
  explicit Decoder(DecodeSink& sink) : sink_(sink) {}

  Mapping decode(const json::Tree& tree) {
    Mapping result;
    const Value root = tree.root();
    if (!expect(root, Type::object, nullptr)) return result;
    result.version = integerAt(root, key::version, nullptr, Presence::required).value_or(result.version);
    result.notes = stringsAt(root, key::notes, nullptr, Presence::optional);
    result.timeoutMilliseconds = integerAt(root, key::timeoutMilliseconds, nullptr, Presence::optional);
    decodeTabs(root, result);
    decodeSequences(root, result);
    return result;
  }

 private:
  enum class Presence { optional, required };

  void fault(DecodingError::Kind kind, const Path* path, std::string reason, const Value& value) {
    report(decodingError(kind, Path::codingPath(path), std::move(reason), value.position()));
  }

  void report(DecodingError error) {
    ++faults_;
    stopped_ = !sink_.fault(std::move(error));
  }

  /// Whether a value has the expected type.
  bool expect(const Value& value, Type type, const Path* path) {
    if (stopped_) return false;
    if (value.type() == type) return true;
    const auto kind =
        value.type() == Type::null ? DecodingError::Kind::valueNotFound : DecodingError::Kind::typeMismatch;
    fault(kind, path, expected(type, value.type()), value);
    return false;
  }

  /// The value of an object's key, if it has the expected type. Null counts as absent.
  std::optional<Value> at(const Value& object, const Path& path, Type type, Presence presence) {
    if (stopped_) return {};
    const auto key = std::get<std::string_view>(path.last);
    const auto value = object.find(key);
    if (presence == Presence::optional && (!value || value->type() == Type::null)) return {};
    if (!value) {
      fault(DecodingError::Kind::keyNotFound, &path, "this key is missing", object);
      return {};
    }
    if (!expect(*value, type, &path)) return {};
    return value;
  }

  std::optional<std::string> string(const Value& value, const Path& path) {
    if (!expect(value, Type::string, &path)) return {};
    return std::string(value.text());
  }

  std::optional<std::string> stringAt(const Value& object, std::string_view key, const Path* parent) {
    const auto value = at(object, {parent, key}, Type::string, Presence::required);
    if (!value) return {};
    return std::string(value->text());
  }

  std::optional<std::int64_t> integerAt(const Value& object, std::string_view key, const Path* parent,
                                        Presence presence) {
    const Path path{parent, key};
    const auto value = at(object, path, Type::number, presence);
    if (!value) return {};
    const auto number = json::integer(value->text());
    if (const auto* integer = std::get_if<std::int64_t>(&number)) return *integer;
    const bool fraction = std::get<json::NotAnInteger>(number) == json::NotAnInteger::fraction;
    fault(DecodingError::Kind::dataCorrupted, &path,
          shortened(value->text()) + (fraction ? " is not an integer" : " does not fit 64 bits"), *value);
    return {};
  }

  /// All of an array's strings, or nothing when one is faulty.
  std::optional<std::vector<std::string>> stringsAt(const Value& object, std::string_view key,
                                                    const Path* parent, Presence presence) {
    const Path path{parent, key};
    const auto array = at(object, path, Type::array, presence);
    if (!array) return {};
    std::vector<std::string> result;
    result.reserve(array->size());
    std::size_t index = 0;
    bool whole = true;
    for (const Value element : array->elements()) {
      if (stopped_) return {};
      auto decoded = string(element, {&path, index++});
      whole = whole && decoded;
      if (whole) result.push_back(*std::move(decoded));
    }
    if (!whole) return {};
    return result;
  }

  /// Of equal keys the first counts, but all values must be strings.
  void decodeTabs(const Value& root, Mapping& result) {
    const Path path{nullptr, key::tabs};
    const auto tabs = at(root, path, Type::object, Presence::required);
    if (!tabs) return;
    for (const json::Member member : tabs->members()) {
      if (stopped_) return;
      auto value = string(member.value, {&path, member.key.text()});
      if (value) result.tabs.emplace(member.key.text(), *std::move(value));
    }
  }

  void decodeSequences(const Value& root, Mapping& result) {
    const Path path{nullptr, key::sequences};
    const auto sequences = at(root, path, Type::array, Presence::required);
    if (!sequences) return;
    result.sequences.reserve(sequences->size());
    std::size_t index = 0;
    for (const Value element : sequences->elements()) {
      if (stopped_) return;
      auto decoded = sequence(element, {&path, index++});
      if (!decoded) continue;
      result.sequences.push_back(*std::move(decoded));
      sink_.sequence(result.sequences.back(), element);
    }
  }

  std::optional<Sequence> sequence(const Value& value, const Path& path) {
    if (!expect(value, Type::object, &path)) return {};
    auto keys = stringAt(value, key::keys, &path);
    auto name = stringAt(value, key::name, &path);
    auto action = actionAt(value, &path);
    if (!keys || !name || !action) return {};
    return Sequence{*std::move(keys), *std::move(name), *std::move(action)};
  }

  std::optional<Action> actionAt(const Value& sequence, const Path* parent) {
    const Path path{parent, key::action};
    const auto object = at(sequence, path, Type::object, Presence::required);
    if (!object) return {};
    const Path kindPath{&path, key::kind};
    const auto kind = at(*object, kindPath, Type::string, Presence::required);
    if (!kind) return {};
    if (kind->text() == kind::applescript) return applescript(*object, path);
    if (kind->text() == kind::keystroke) return keystroke(*object, path);
    if (kind->text() == kind::keytips) return keytips(*object, path);
    if (kind->text() == kind::menu) return menu(*object, path);
    report(unknownKindError(Path::codingPath(&kindPath), kind->text(), kind->position()));
    return {};
  }

  std::optional<Action> applescript(const Value& object, const Path& path) {
    auto script = stringAt(object, key::script, &path);
    if (!script) return {};
    return action::AppleScript{*std::move(script)};
  }

  std::optional<Action> keystroke(const Value& object, const Path& path) {
    const std::size_t faults = faults_;
    auto key = stringAt(object, key::key, &path);
    auto modifiers = stringsAt(object, key::modifiers, &path, Presence::optional);
    if (faults_ != faults || !key) return {};
    return action::Keystroke{*std::move(key), std::move(modifiers).value_or(std::vector<std::string>())};
  }

  std::optional<Action> keytips(const Value& object, const Path& path) {
    auto keys = stringAt(object, key::keys, &path);
    if (!keys) return {};
    return action::KeyTips{*std::move(keys)};
  }

  std::optional<Action> menu(const Value& object, const Path& path) {
    auto titles = stringsAt(object, key::path, &path, Presence::required);
    if (!titles) return {};
    return action::Menu{*std::move(titles)};
  }

  DecodeSink& sink_;
  std::size_t faults_ = 0;
  bool stopped_ = false;
};

class FirstFault : public DecodeSink {
 public:
  bool fault(DecodingError found) override {
    error = std::move(found);
    return false;
  }

  std::optional<DecodingError> error;
};

}  // namespace

Mapping decode(const json::Tree& tree, DecodeSink& sink) {
  return Decoder(sink).decode(tree);
}

std::variant<Mapping, DecodingError> decode(std::string_view bytes) {
  const auto parsed = json::Tree::parse(bytes);
  if (const auto* error = std::get_if<json::SyntaxError>(&parsed)) return decodingError(*error);
  FirstFault sink;
  Mapping mapping = decode(std::get<json::Tree>(parsed), sink);
  if (sink.error) return *std::move(sink.error);
  return mapping;
}

}  // namespace keyvora
