#include "tools/apple_script.h"

#include <gtest/gtest.h>

namespace keyvora::tools {
namespace {

struct Case {
  std::string script;
  std::string fault;
};

TEST(AppleScriptTest, FindsTheFirstThingThatDoesNotFit) {
  const Case cases[] = {
      {"", ""},
      {"beep", ""},
      {"if a then\n  beep\nend if", ""},
      {"IF a THEN\n  beep\nEND IF", ""},
      {"if a then beep", ""},
      {"if a is \"then x\" then\n  beep\nend if", ""},
      {"if a\n  beep\nend if", ""},
      {"if a then\n  beep\nelse if b then\n  beep\nelse\n  beep\nend if", ""},
      {"tell active window\n  beep\nend tell", ""},
      {"tell active window to beep", ""},
      {"repeat with e in {1, 2}\n  try\n    beep\n  on error\n    beep\n  end try\nend repeat", ""},
      {"repeat\n  exit repeat\nend", ""},
      {"with timeout of 5 seconds\n  beep\nend timeout", ""},
      {"ignoring application responses\n  beep\nend ignoring", ""},
      {"considering case\n  beep\nend considering", ""},
      {"using terms from application \"Finder\"\n  beep\nend using terms from", ""},
      {"on doIt()\n  beep\nend doIt", ""},
      {"set endOfDay to 1\nset iffy to 2\nset tryout to 3", ""},
      {"beep -- if a then", ""},
      {"beep # repeat", ""},
      {"(* if (* nested *) repeat *) beep", ""},
      {"set a to \"if \\\"b\\\" then\"", ""},
      {"if a and \xC2\xAC\n  b then\n  beep\nend if", ""},
      {"\r\nif a then\r\n  beep\r\nend if\r\n", ""},
      {"if a then\n  beep", "the \"if\" in line 1 of the script is never closed; add \"end if\""},
      {"beep\nend", "\"end\" in line 2 of the script closes nothing; remove it"},
      {"try\n  if a then\n    beep\nend try\nend if",
       "\"end try\" in line 4 of the script stands where the \"if\" of line 2 is still open; close that "
       "first "
       "with \"end if\""},
      {"on doIt()\n  beep", "the \"on\" in line 1 of the script is never closed; add \"end\""},
      {"beep\nset a to \"b",
       "the quotation mark in line 2 of the script is never closed; add one, as \\\" in JSON"},
      {"set a to \"b\\\"",
       "the quotation mark in line 1 of the script is never closed; add one, as \\\" in JSON"},
      {"beep\n(* (* *)", "the comment that begins in line 2 of the script is never closed; add \"*)\""},
  };
  for (const auto& [script, fault] : cases) EXPECT_EQ(blockFault(script), fault) << script;
}

TEST(AppleScriptTest, CutsIntoStatementsWithTheirLines) {
  const auto statements = statementsOf("-- first\n  Set A to \"B C\" -- why\n\nbeep \xC2\xAC\n  2\n").all;
  ASSERT_EQ(statements.size(), 2U);
  EXPECT_EQ(statements[0].line, 2U);
  EXPECT_EQ(statements[0].code, "set a to \"\"");
  EXPECT_EQ(statements[1].line, 4U);
  EXPECT_EQ(statements[1].code, "beep 2");
}

}  // namespace
}  // namespace keyvora::tools
