#include "tools/check.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include <algorithm>
#include <cstdlib>
#include <set>

#include "tests/support/processor_time.h"
#include "tests/tools/golden.h"
#include "tests/vectors/line.h"
#include "tools/rules/rules.h"

namespace keyvora::tools {
namespace {

using testing::IsEmpty;

/// A document with faults, and the complete output of the check for it.
class BrokenDocument : public testing::TestWithParam<std::string> {};

std::vector<std::string> brokenDocuments() {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(projectFile("tests/tools/broken"))) {
    if (entry.path().extension() == ".json") names.push_back(entry.path().stem().string());
  }
  std::ranges::sort(names);
  return names;
}

TEST_P(BrokenDocument, IsReportedWhole) {
  const auto file = projectFile("tests/tools/broken/" + GetParam() + ".json");
  const Document document(contentOf(file));
  EXPECT_EQ(asText(check(document), file.filename().string()),
            contentOf(std::filesystem::path(file).replace_extension(".txt")));
}

INSTANTIATE_TEST_SUITE_P(Corpus, BrokenDocument, testing::ValuesIn(brokenDocuments()),
                         [](const auto& each) { return each.param; });

TEST(CheckTest, EveryRuleAndEveryKindOfErrorIsInTheCorpus) {
  std::set<std::string_view> seen;
  for (const auto& name : brokenDocuments()) {
    const Document document(contentOf(projectFile("tests/tools/broken/" + name + ".json")));
    for (const auto& finding : check(document)) seen.insert(finding.rule);
  }
  for (const auto& rule : rules()) EXPECT_TRUE(seen.contains(rule.name)) << rule.name;
  using Kind = DecodingError::Kind;
  for (const auto kind : {Kind::dataCorrupted, Kind::keyNotFound, Kind::valueNotFound, Kind::typeMismatch}) {
    EXPECT_TRUE(seen.contains(nameOf(kind))) << nameOf(kind);
  }
}

TEST(CheckTest, HasNothingToSayAboutWhatIsShipped) {
  for (const std::string file :
       {"resources/mappings.json", "resources/calc.json", "resources/gnumeric.json"}) {
    EXPECT_EQ(asText(check(Document(contentOf(projectFile(file)))), file), "");
  }
}

/// The project's vectors, or those in the folder named by KEYVORA_VECTORS.
TEST(CheckTest, HasErrorsExactlyWhereTheApplicationRejects) {
  const char* folder = std::getenv("KEYVORA_VECTORS");
  const std::filesystem::path vectors =
      folder != nullptr ? std::filesystem::path(folder) : projectFile("tests/vectors/data");
  std::ifstream lines(vectors / "decode.jsonl");
  std::size_t count = 0;
  for (std::string json; std::getline(lines, json); ++count) {
    rapidjson::Document line;
    line.Parse<rapidjson::kParseIterativeFlag>(json.data(), json.size());
    ASSERT_FALSE(line.HasParseError()) << json;
    const auto bytes = vectors::fromBase64(vectors::stringField(line, "bytes"));
    const bool accepted = std::holds_alternative<Mapping>(decode(bytes));
    EXPECT_EQ(accepted, vectors::stringField(line, "expect") == "ok") << bytes;
    const auto findings = check(Document(bytes));
    const bool hasErrors = std::ranges::any_of(
        findings, [](const Finding& finding) { return finding.severity == Severity::error; });
    EXPECT_EQ(hasErrors, !accepted) << bytes;
  }
  EXPECT_GT(count, 0U);
}

TEST(CheckTest, SortsByPlaceWhateverTheRuleThatFoundIt) {
  const auto findings =
      check(Document(contentOf(projectFile("tests/tools/broken/errors_and_warnings.json"))));
  EXPECT_GT(findings.size(), 5U);
  EXPECT_TRUE(std::ranges::is_sorted(findings, {}, [](const Finding& finding) {
    return std::pair(finding.position.line, finding.position.column);
  }));
}

/// The processor time for checking a document with this many sequences and two findings in each.
std::chrono::duration<double> timeToFind(std::size_t count) {
  std::string bytes = "{\"version\": 1, \"tabs\": {}, \"sequences\": [\n";
  for (std::size_t i = 0; i < count; ++i) {
    bytes += R"({"keys": "A-)" + std::to_string(i) +
             R"(", "name": "N", "action": {"kind": "keystroke", "key": "zzz"}})" +
             (i + 1 < count ? ",\n" : "]}");
  }
  const auto start = test::processorTime();
  EXPECT_EQ(check(Document(bytes)).size(), 2 * count);
  return test::processorTime() - start;
}

TEST(CheckTest, TakesTimeInProportionToTheFindings) {
  auto few = timeToFind(500);
  for (int i = 0; i < 2; ++i) few = std::min(few, timeToFind(500));
  // Twenty times as many would take four hundred times as long if each finding looked at all others.
  EXPECT_LT(timeToFind(10'000) / few, 100);
}

TEST(CheckTest, WritesOneJsonObjectForPrograms) {
  const Document document(R"({"version": 1, "tabs": {}, "sequences": [{"keys": "\"", "name": "N", )"
                          R"("action": {"kind": "menu", "path": []}}]})");
  EXPECT_EQ(asJson(check(document), "a \"b\".json"),
            R"({"file":"a \"b\".json","findings":[)"
            R"({"severity":"warning","rule":"untypable-letters","line":1,"column":51,)"
            R"("path":"sequences[0].keys","text":"no key produces \"\\\"\", so this sequence never fires; )"
            R"(use the letters A to Z and the digits 0 to 9"},)"
            R"({"severity":"warning","rule":"empty-path","line":1,"column":105,)"
            R"("path":"sequences[0].action.path","text":"an empty path presses the menu bar itself; )"
            R"(write the titles from the menu bar down to the item"}]})"
            "\n");
  EXPECT_EQ(asJson({}, "f"), "{\"file\":\"f\",\"findings\":[]}\n");
}

TEST(CheckTest, TakesNoNoteOfFieldsOfTheUsersOwn) {
  EXPECT_THAT(check(Document(R"({"$schema": "mappings.schema.json", "version": 1, "tabs": {}, "sequences": [
      {"keys": "A", "name": "A name", "comment": "mine", "action": {"kind": "menu", "path": ["A"], "why": "so"}}]})")),
              IsEmpty());
}

}  // namespace
}  // namespace keyvora::tools
