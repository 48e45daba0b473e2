#include "mapping/decode.h"

#include <gtest/gtest.h>

#include <vector>

#include "mapping/encode.h"

namespace keyvora {
namespace {

using Kind = DecodingError::Kind;

/// A document with one sequence that has this action.
std::string withAction(std::string_view action) {
  return R"({"version":1,"tabs":{},"sequences":[{"keys":"A","name":"n","action":)" + std::string(action) +
         "}]}";
}

TEST(Decode, ReadsAWholeDocument) {
  const auto result = decode(R"({
    "version": 1, "notes": ["a", "b"], "timeoutMilliseconds": 800, "tabs": {"H": "Home"},
    "sequences": [
      {"keys": "FC", "name": "Fill colour", "action": {"kind": "keytips", "keys": "HH"}},
      {"keys": "SV", "name": "Paste values",
       "action": {"kind": "keystroke", "key": "v", "modifiers": ["command", "shift"]}},
      {"keys": "MR", "name": "Merge cells", "action": {"kind": "menu", "path": ["Format", "Cells"]}},
      {"keys": "BO", "name": "Bold", "action": {"kind": "applescript", "script": "beep"}}
    ]})");
  Mapping expected;
  expected.version = 1;
  expected.notes = {"a", "b"};
  expected.timeoutMilliseconds = 800;
  expected.tabs = {{"H", "Home"}};
  expected.sequences = {
      {"FC", "Fill colour", action::KeyTips{"HH"}},
      {"SV", "Paste values", action::Keystroke{"v", {"command", "shift"}}},
      {"MR", "Merge cells", action::Menu{{"Format", "Cells"}}},
      {"BO", "Bold", action::AppleScript{"beep"}},
  };
  ASSERT_TRUE(std::holds_alternative<Mapping>(result)) << std::get<DecodingError>(result).description;
  EXPECT_EQ(std::get<Mapping>(result), expected);
}

TEST(Decode, AcceptsWhatTheFormatAllows) {
  struct Row {
    std::string document;
    std::string_view encoded;
  };
  const Row rows[] = {
      {R"({"version":1,"tabs":{},"sequences":[]})", R"({"sequences":[],"tabs":{},"version":1})"},
      {R"({"version":-3,"tabs":{},"sequences":[],"notes":null,"timeoutMilliseconds":null})",
       R"({"sequences":[],"tabs":{},"version":-3})"},
      {R"({"version":0,"timeoutMilliseconds":-1.0,"tabs":{},"sequences":[],"notes":[]})",
       R"({"notes":[],"sequences":[],"tabs":{},"timeoutMilliseconds":-1,"version":0})"},
      {R"({"version":1,"Version":"x","tabs":{},"sequences":[],"extra":{"kind":[1e999]}})",
       R"({"sequences":[],"tabs":{},"version":1})"},
      {R"({"version":1,"version":"x","tabs":{},"sequences":[],"sequences":5})",
       R"({"sequences":[],"tabs":{},"version":1})"},
      {R"({"version":1,"sequences":[],"tabs":{"b":"2","a":"1","b":"3","é":"4","é":"5"},})",
       R"({"sequences":[],"tabs":{"a":"1","b":"2","é":"4"},"version":1})"},
      {withAction(R"({"kind":"keystroke","key":"v","script":5,"path":{}})"),
       R"({"sequences":[{"action":{"key":"v","kind":"keystroke","modifiers":[]},"keys":"A","name":"n"}],"tabs":{},"version":1})"},
      {withAction(R"({"kind":"keystroke","key":"v","modifiers":null})"),
       R"({"sequences":[{"action":{"key":"v","kind":"keystroke","modifiers":[]},"keys":"A","name":"n"}],"tabs":{},"version":1})"},
      {withAction(R"({"path":[],"kind":"menu"})"),
       R"({"sequences":[{"action":{"kind":"menu","path":[]},"keys":"A","name":"n"}],"tabs":{},"version":1})"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.document);
    const auto result = decode(row.document);
    if (const auto* error = std::get_if<DecodingError>(&result)) {
      ADD_FAILURE() << error->description;
    } else {
      EXPECT_EQ(encode(std::get<Mapping>(result)), row.encoded);
    }
  }
}

TEST(Decode, KeepsSequencesOfTheSameKeysInOrder) {
  const auto result = decode(
      R"({"version":1,"tabs":{},"sequences":[
        {"keys":"A","name":"1","action":{"kind":"keytips","keys":""}},
        {"keys":"A","name":"2","action":{"kind":"keytips","keys":""}}]})");
  const auto& sequences = std::get<Mapping>(result).sequences;
  ASSERT_EQ(sequences.size(), 2U);
  EXPECT_EQ(sequences[0].name, "1");
  EXPECT_EQ(sequences[1].name, "2");
}

TEST(Decode, FailsAtTheFirstFaultInTheOrderOfReading) {
  struct Row {
    std::string document;
    Kind kind;
    CodingPath path;
    std::string_view description;
  };
  const CodingPath action = {"sequences", 0U, "action"};
  const auto inAction = [&](std::initializer_list<PathElement> rest) {
    CodingPath path = action;
    path.insert(path.end(), rest);
    return path;
  };
  const Row rows[] = {
      {"", Kind::dataCorrupted, {}, "not valid JSON: the document is empty (line 1, column 1)"},
      {"{\n  \"version\" 1}",
       Kind::dataCorrupted,
       {},
       "not valid JSON: expected a colon after the key, found '1' (line 2, column 13)"},
      {"null", Kind::valueNotFound, {}, "expected an object, found null (line 1, column 1)"},
      {" []", Kind::typeMismatch, {}, "expected an object, found an array (line 1, column 2)"},
      {"{}", Kind::keyNotFound, {"version"}, "version: this key is missing (line 1, column 1)"},
      {R"({"version":null})",
       Kind::valueNotFound,
       {"version"},
       "version: expected a number, found null (line 1, column 12)"},
      {R"({"version":"1"})",
       Kind::typeMismatch,
       {"version"},
       "version: expected a number, found a string (line 1, column 12)"},
      {R"({"version":true})",
       Kind::typeMismatch,
       {"version"},
       "version: expected a number, found a boolean (line 1, column 12)"},
      {R"({"version":1.5})",
       Kind::dataCorrupted,
       {"version"},
       "version: 1.5 is not an integer (line 1, column 12)"},
      {R"({"version":9223372036854775808})",
       Kind::dataCorrupted,
       {"version"},
       "version: 9223372036854775808 does not fit 64 bits (line 1, column 12)"},
      {R"({"version":)" + std::string(50, '9') + "}",
       Kind::dataCorrupted,
       {"version"},
       "version: 9999999999999999999999999999999999999999… does not fit 64 bits (line 1, column 12)"},
      {R"({"version":1,"sequences":5,"timeoutMilliseconds":[],"notes":{}})",
       Kind::typeMismatch,
       {"notes"},
       "notes: expected an array, found an object (line 1, column 61)"},
      {R"({"version":1,"notes":["a",null]})",
       Kind::valueNotFound,
       {"notes", 1U},
       "notes[1]: expected a string, found null (line 1, column 27)"},
      {R"({"version":1,"notes":["a",["b"]]})",
       Kind::typeMismatch,
       {"notes", 1U},
       "notes[1]: expected a string, found an array (line 1, column 27)"},
      {R"({"version":1,"timeoutMilliseconds":1.5})",
       Kind::dataCorrupted,
       {"timeoutMilliseconds"},
       "timeoutMilliseconds: 1.5 is not an integer (line 1, column 36)"},
      {R"({"version":1,"sequences":5})",
       Kind::keyNotFound,
       {"tabs"},
       "tabs: this key is missing (line 1, column 1)"},
      {R"({"version":1,"tabs":null})",
       Kind::valueNotFound,
       {"tabs"},
       "tabs: expected an object, found null (line 1, column 21)"},
      {R"({"version":1,"tabs":{"a":"x","a":1}})",
       Kind::typeMismatch,
       {"tabs", "a"},
       "tabs.a: expected a string, found a number (line 1, column 34)"},
      {R"({"version":1,"tabs":{"a \"\n":false}})",
       Kind::typeMismatch,
       {"tabs", "a \"\n"},
       "tabs[\"a \\\"\\u000a\"]: expected a string, found a boolean (line 1, column 31)"},
      {R"({"version":1,"tabs":{}})",
       Kind::keyNotFound,
       {"sequences"},
       "sequences: this key is missing (line 1, column 1)"},
      {R"({"version":1,"tabs":{},"sequences":{}})",
       Kind::typeMismatch,
       {"sequences"},
       "sequences: expected an array, found an object (line 1, column 36)"},
      {R"({"version":1,"tabs":{},"sequences":[null]})",
       Kind::valueNotFound,
       {"sequences", 0U},
       "sequences[0]: expected an object, found null (line 1, column 37)"},
      {R"({"version":1,"tabs":{},"sequences":[{"name":5,"action":5}]})",
       Kind::keyNotFound,
       {"sequences", 0U, "keys"},
       "sequences[0].keys: this key is missing (line 1, column 37)"},
      {R"({"version":1,"tabs":{},"sequences":[{"keys":"A","name":5,"action":5}]})",
       Kind::typeMismatch,
       {"sequences", 0U, "name"},
       "sequences[0].name: expected a string, found a number (line 1, column 56)"},
      {withAction("null"), Kind::valueNotFound, action,
       "sequences[0].action: expected an object, found null (line 1, column 69)"},
      {withAction("{}"), Kind::keyNotFound, inAction({"kind"}),
       "sequences[0].action.kind: this key is missing (line 1, column 69)"},
      {withAction(R"({"kind":1})"), Kind::typeMismatch, inAction({"kind"}),
       "sequences[0].action.kind: expected a string, found a number (line 1, column 77)"},
      {withAction(R"({"kind":"Keytips","keys":5})"), Kind::dataCorrupted, inAction({"kind"}),
       "unknown action kind Keytips"},
      {withAction(R"({"kind":""})"), Kind::dataCorrupted, inAction({"kind"}), "unknown action kind "},
      {withAction(R"({"kind":"menu\n"})"), Kind::dataCorrupted, inAction({"kind"}),
       "unknown action kind menu\n"},
      {withAction(R"({"kind":"applescript"})"), Kind::keyNotFound, inAction({"script"}),
       "sequences[0].action.script: this key is missing (line 1, column 69)"},
      {withAction(R"({"kind":"keytips","keys":["A"]})"), Kind::typeMismatch, inAction({"keys"}),
       "sequences[0].action.keys: expected a string, found an array (line 1, column 94)"},
      {withAction(R"({"kind":"keystroke","modifiers":5})"), Kind::keyNotFound, inAction({"key"}),
       "sequences[0].action.key: this key is missing (line 1, column 69)"},
      {withAction(R"({"kind":"keystroke","key":"v","modifiers":"shift"})"), Kind::typeMismatch,
       inAction({"modifiers"}),
       "sequences[0].action.modifiers: expected an array, found a string (line 1, column 111)"},
      {withAction(R"({"kind":"menu","path":null})"), Kind::valueNotFound, inAction({"path"}),
       "sequences[0].action.path: expected an array, found null (line 1, column 91)"},
      {withAction(R"({"kind":"menu","path":["Format",1]})"), Kind::typeMismatch, inAction({"path", 1U}),
       "sequences[0].action.path[1]: expected a string, found a number (line 1, column 101)"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.document);
    const auto result = decode(row.document);
    const auto* error = std::get_if<DecodingError>(&result);
    ASSERT_NE(error, nullptr);
    EXPECT_EQ(nameOf(error->kind), nameOf(row.kind));
    EXPECT_EQ(error->path, row.path);
    EXPECT_EQ(error->description, row.description);
  }
}

/// Records everything and lets the decoder continue.
class Everything : public DecodeSink {
 public:
  bool fault(DecodingError error) override {
    faults.push_back(error.description);
    return true;
  }

  void sequence(const Sequence& sequence, const json::Value& source) override {
    sequences.push_back(sequence.name + " at " + std::to_string(source.position().line));
  }

  std::vector<std::string> faults;
  std::vector<std::string> sequences;
};

TEST(Decode, ACheckerHearsOfAllFaultsAndWhatIsWhole) {
  const std::string document = R"({"version": 1.5, "tabs": {"x": 1, "y": null, "z": "good"}, "sequences": [
{"keys": 1, "action": {"kind": "Menu"}},
null,
{"keys": "A", "name": "one", "action": {"kind": "menu", "path": []}},
{"keys": "B", "name": "two", "action": {"kind": "keystroke", "modifiers": [1, "shift", 2]}},
{"keys": "C", "name": "three", "action": {"kind": "keystroke", "key": "v", "modifiers": [3]}},
{"keys": "D", "name": "four", "action": {"kind": "keystroke", "key": "v"}}
]})";
  const auto parsed = json::Tree::parse(document);
  Everything sink;
  const Mapping mapping = decode(std::get<json::Tree>(parsed), sink);
  const std::vector<std::string> faults = {
      "version: 1.5 is not an integer (line 1, column 13)",
      "tabs.x: expected a string, found a number (line 1, column 32)",
      "tabs.y: expected a string, found null (line 1, column 40)",
      "sequences[0].keys: expected a string, found a number (line 2, column 10)",
      "sequences[0].name: this key is missing (line 2, column 1)",
      "unknown action kind Menu",
      "sequences[1]: expected an object, found null (line 3, column 1)",
      "sequences[3].action.key: this key is missing (line 5, column 40)",
      "sequences[3].action.modifiers[0]: expected a string, found a number (line 5, column 76)",
      "sequences[3].action.modifiers[2]: expected a string, found a number (line 5, column 88)",
      "sequences[4].action.modifiers[0]: expected a string, found a number (line 6, column 90)",
  };
  EXPECT_EQ(sink.faults, faults);
  EXPECT_EQ(sink.sequences, (std::vector<std::string>{"one at 4", "four at 7"}));
  EXPECT_EQ(mapping.sequences.size(), 2U);
  EXPECT_EQ(mapping.tabs.size(), 1U);
}

TEST(DecodingError, DescribesAnyPathOnOneLine) {
  const std::pair<CodingPath, std::string> rows[] = {
      {{}, ""},
      {{"version"}, "version"},
      {{0U}, "[0]"},
      {{"sequences", 3U, "action", "path", 12U}, "sequences[3].action.path[12]"},
      {{"tabs", ""}, "tabs[\"\"]"},
      {{"tabs", "1a"}, "tabs[\"1a\"]"},
      {{"tabs", "a_1"}, "tabs.a_1"},
      {{"tabs", "é\t\\\x7F"}, "tabs[\"é\\u0009\\\\\\u007f\"]"},
      {{"tabs", std::string(61, 'x')}, "tabs[\"" + std::string(60, 'x') + "…\"]"},
      {{"tabs", std::string(59, 'x') + "éé"}, "tabs[\"" + std::string(59, 'x') + "…\"]"},
  };
  for (const auto& [path, text] : rows) EXPECT_EQ(describe(path), text);
}

}  // namespace
}  // namespace keyvora
