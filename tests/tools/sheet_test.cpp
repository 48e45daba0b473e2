#include "tools/sheet.h"

#include <gtest/gtest.h>

#include "tests/tools/golden.h"
#include "tools/document.h"
#include "tools/wording.h"

namespace keyvora::tools {
namespace {

struct SheetTest : testing::Test {
  Document document{golden("document.json")};
  std::vector<SheetTab> sheet = sheetOf(document.mapping());
};

TEST_F(SheetTest, HoldsWhatCanFireByTabInDocumentOrder) {
  ASSERT_EQ(sheet.size(), 3U);
  EXPECT_EQ(sheet[0].name, "Home");
  EXPECT_EQ(sheet[1].name, "Insert <new>");
  EXPECT_EQ(sheet[2].letter, "Z");
  EXPECT_EQ(sheet[2].name, "");
  ASSERT_EQ(sheet[0].rows.size(), 3U);
  EXPECT_EQ(sheet[0].rows[2].name, "Cut");
}

TEST_F(SheetTest, WritesATable) {
  EXPECT_EQ(asTable(sheet), golden("list.txt"));
}
TEST_F(SheetTest, WritesMarkdown) {
  EXPECT_EQ(asMarkdown(sheet), golden("cheatsheet.md"));
}
TEST_F(SheetTest, WritesHtml) {
  EXPECT_EQ(asHtml(sheet), golden("cheatsheet.html"));
}

TEST_F(SheetTest, ThePageNeedsNothingElse) {
  const auto html = asHtml(sheetOf(Document(contentOf(projectFile("resources/mappings.json"))).mapping()));
  for (const auto* reference : {"src=", "href=", "url(", "@import", "<script", "http"}) {
    EXPECT_EQ(html.find(reference), std::string::npos) << reference;
  }
}

TEST_F(SheetTest, AnEmptyDocumentHasAnEmptySheet) {
  EXPECT_EQ(asTable(sheetOf({})), "");
  EXPECT_EQ(asMarkdown(sheetOf({})).find("◆"), std::string::npos);
}

TEST(WordingTest, ShowsShortcutsAsMacMenusDo) {
  struct Case {
    action::Keystroke keystroke;
    std::string shown;
  };
  const Case cases[] = {
      {{"v", {"command"}}, "⌘V"},
      {{"v", {"shift", "CMD", "alt", "ctrl"}}, "⌃⌥⇧⌘V"},
      {{"f11", {"shift"}}, "⇧F11"},
      {{"return", {}}, "Return"},
      {{"f", {}}, "F"},
      {{"-", {"option", "hyper"}}, "⌥-"},
  };
  for (const auto& [keystroke, shown] : cases) EXPECT_EQ(shortcut(keystroke), shown);
}

TEST(WordingTest, SaysTimesInSeconds) {
  EXPECT_EQ(inSeconds(std::chrono::milliseconds(1500)), "1.5 seconds");
  EXPECT_EQ(inSeconds(std::chrono::milliseconds(1000)), "1 second");
  EXPECT_EQ(inSeconds(std::chrono::milliseconds(-250)), "-0.25 seconds");
  EXPECT_EQ(inSeconds(std::chrono::milliseconds(1500000)), "1500 seconds");
}

TEST(WordingTest, KeepsQuotedTextOnOneLine) {
  EXPECT_EQ(inQuotes("a\"b\\c\n\x7F"), "\"a\\\"b\\\\c\\u000A\\u007F\"");
  EXPECT_EQ(inQuotes("é…"), "\"é…\"");
}

}  // namespace
}  // namespace keyvora::tools
