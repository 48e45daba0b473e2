#include "tools/explain.h"

#include <gtest/gtest.h>

#include "tests/tools/golden.h"
#include "tools/document.h"

namespace keyvora::tools {
namespace {

/// The document's mapping, and the expected explanations in golden/explain_LETTERS.txt.
struct ExplainTest : testing::Test {
  Document document{golden("document.json")};

  void expect(const std::string& letters, bool fires) {
    const auto explanation = explain(Sequence{letters, {}, {}}.letters(), document.mapping());
    EXPECT_EQ(explanation.text, golden("explain_" + letters + ".txt"));
    EXPECT_EQ(explanation.fires, fires) << letters;
  }
};

TEST_F(ExplainTest, ASequenceThatFiresAtOnce) {
  expect("HFC", true);
}
TEST_F(ExplainTest, ASequenceThatWaitsForALongerOne) {
  expect("HF", true);
}
TEST_F(ExplainTest, ABeginningThatIsGivenUp) {
  expect("H", false);
}
TEST_F(ExplainTest, LettersThatLeadNowhere) {
  expect("HQ", false);
}
TEST_F(ExplainTest, LettersAfterTheEnd) {
  expect("HXA", true);
}
TEST_F(ExplainTest, AScript) {
  expect("Z1", true);
}
TEST_F(ExplainTest, AnActionThatFails) {
  expect("Z2", true);
}

TEST_F(ExplainTest, AKeystrokeWithModifiers) {
  expect("NT", true);
}

TEST_F(ExplainTest, NoLettersAtAll) {
  const auto explanation = explain({}, document.mapping());
  EXPECT_EQ(explanation.text, "Option  armed\n");
  EXPECT_FALSE(explanation.fires);
}

TEST_F(ExplainTest, AnEmptyDocument) {
  const auto explanation = explain({"H"}, {});
  EXPECT_EQ(explanation.text,
            "Option  armed\n"
            "H       swallowed; nothing starts with H\n"
            "        log: no sequence H\n");
  EXPECT_FALSE(explanation.fires);
}

TEST_F(ExplainTest, ATimeoutOfZeroOrLessWaitsNoTime) {
  auto mapping = document.mapping();
  for (const std::int64_t timeout : {0, -500}) {
    mapping.timeoutMilliseconds = timeout;
    const auto explanation = explain({"H", "F"}, mapping);
    EXPECT_NE(explanation.text.find("after 0 seconds without another letter: fires HF  Font"),
              std::string::npos)
        << explanation.text;
  }
}

TEST_F(ExplainTest, TheTimeoutThatADocumentLeavesOut) {
  auto mapping = document.mapping();
  mapping.timeoutMilliseconds.reset();
  const auto explanation = explain({"H", "F"}, mapping);
  EXPECT_NE(explanation.text.find("after 1.5 seconds without another letter"), std::string::npos)
      << explanation.text;
}

}  // namespace
}  // namespace keyvora::tools
