#include "json/tree.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace keyvora::json {
namespace {

using namespace std::string_view_literals;

Tree parsed(std::string_view bytes) {
  auto result = Tree::parse(bytes);
  if (const auto* error = std::get_if<SyntaxError>(&result)) ADD_FAILURE() << error->reason;
  return std::get<Tree>(std::move(result));
}

using Place = std::pair<std::size_t, std::size_t>;

Place place(const Value& value) {
  return {value.position().line, value.position().column};
}

TEST(JsonTree, KnowsTypeTextAndSizeOfEveryValue) {
  struct Row {
    std::string_view json;
    Type type;
    std::string_view text;
    std::size_t size;
  };
  const Row rows[] = {
      {"null", Type::null, "null", 0},
      {"true", Type::boolean, "true", 0},
      {" false ", Type::boolean, "false", 0},
      {"-0.50e+01", Type::number, "-0.50e+01", 0},
      {"1e999999999999", Type::number, "1e999999999999", 0},
      {"\"\"", Type::string, "", 0},
      {"\"a\x7F/é😀\"", Type::string, "a\x7F/é😀", 0},
      {R"("\"\\\/\b\f\n\r\t\u00e9\uD83D\uDE00\u0000.")", Type::string, "\"\\/\b\f\n\r\té😀\0."sv, 0},
      {R"("\\u0041")", Type::string, "\\u0041", 0},
      {R"("\"")", Type::string, "\"", 0},
      {R"("\"abc")", Type::string, "\"abc", 0},
      {"[]", Type::array, "", 0},
      {"[1,[2,3],{}]", Type::array, "", 3},
      {"[1 , ]", Type::array, "", 1},
      {"{}", Type::object, "", 0},
      {R"({"a":1,"a":2,})", Type::object, "", 2},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.json);
    const Tree tree = parsed(row.json);
    EXPECT_EQ(tree.root().type(), row.type);
    EXPECT_EQ(tree.root().text(), row.text);
    EXPECT_EQ(tree.root().size(), row.size);
  }
}

TEST(JsonTree, WalksElementsAndMembersInOrder) {
  const Tree tree = parsed(R"({"a": [1, [2, {"x": 3}], "four"], "\u0062": {"c": []}, "a": 5})");
  std::vector<std::string> keys;
  for (const Member member : tree.root().members()) keys.emplace_back(member.key.text());
  EXPECT_EQ(keys, (std::vector<std::string>{"a", "b", "a"}));

  std::vector<std::string> elements;
  for (const Value element : tree.root().find("a")->elements()) elements.emplace_back(element.text());
  EXPECT_EQ(elements, (std::vector<std::string>{"1", "", "four"}));
  for (const Value element : tree.root().elements()) ADD_FAILURE() << element.text();
  for (const Member member : tree.root().find("a")->members()) ADD_FAILURE() << member.key.text();
}

TEST(JsonTree, FindsTheFirstKeyThatIsCanonicallyEquivalent) {
  const Tree tree = parsed("{\"K\":1,\"\u212A\":2,\"e\u0301\":3,\"é\":4,\"k\":5,\"\":6}");
  EXPECT_EQ(tree.root().find("K")->text(), "1");
  EXPECT_EQ(tree.root().find("\u212A")->text(), "1");
  EXPECT_EQ(tree.root().find("é")->text(), "3");
  EXPECT_EQ(tree.root().find("k")->text(), "5");
  EXPECT_EQ(tree.root().find("")->text(), "6");
  EXPECT_FALSE(tree.root().find("kk"));
}

TEST(JsonTree, KnowsWhereEveryKeyAndValueStands) {
  const Tree tree = parsed(
      "\xEF\xBB\xBF{\n"
      "  \"é😀\": [1,\r\n"
      "\ttrue ,\r"
      " \"x\"],\n\r"
      "\"o\" : { } , \"n\"\n:\n-1.5}");
  std::vector<Place> places = {place(tree.root())};
  for (const Member member : tree.root().members()) {
    places.push_back(place(member.key));
    places.push_back(place(member.value));
    for (const Value element : member.value.elements()) places.push_back(place(element));
  }
  const std::vector<Place> expected = {{1, 1}, {2, 3}, {2, 9}, {2, 10}, {3, 2},
                                       {4, 2}, {6, 1}, {6, 7}, {6, 13}, {8, 1}};
  EXPECT_EQ(places, expected);
}

TEST(JsonTree, StaysValidWhenItMoves) {
  std::vector<Tree> trees;
  trees.push_back(parsed(R"(["\n"])"));
  trees.push_back(parsed("[\0\"\0a\0\"\0]\0"sv));
  trees.reserve(100);
  EXPECT_EQ((*trees[0].root().elements().begin()).text(), "\n");
  EXPECT_EQ((*trees[1].root().elements().begin()).text(), "a");
}

TEST(JsonTree, ReadsEveryEncoding) {
  const std::string_view documents[] = {
      "[\"é😀\"]"sv,
      "\xEF\xBB\xBF[\"é😀\"]"sv,
      "[\0\"\0\xE9\0\x3D\xD8\0\xDE\"\0]\0"sv,
      "\xFF\xFE[\0\"\0\xE9\0\x3D\xD8\0\xDE\"\0]\0"sv,
      "\0[\0\"\0\xE9\xD8\x3D\xDE\0\0\"\0]"sv,
      "\xFE\xFF\0[\0\"\0\xE9\xD8\x3D\xDE\0\0\"\0]"sv,
      "[\0\0\0\"\0\0\0\xE9\0\0\0\0\xF6\1\0\"\0\0\0]\0\0\0"sv,
      "\0\0\0[\0\0\0\"\0\0\0\xE9\0\1\xF6\0\0\0\0\"\0\0\0]"sv,
      "\0\0\xFE\xFF\0\0\0[\0\0\0\"\0\0\0\xE9\0\1\xF6\0\0\0\0\"\0\0\0]"sv,
  };
  for (const auto document : documents) {
    SCOPED_TRACE(testing::PrintToString(document));
    const Tree tree = parsed(document);
    EXPECT_EQ((*tree.root().elements().begin()).text(), "é😀");
  }
  EXPECT_EQ(parsed("7\0"sv).root().text(), "7");
  EXPECT_EQ(parsed("\0007"sv).root().text(), "7");
}

}  // namespace
}  // namespace keyvora::json
