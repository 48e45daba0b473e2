#include "tools/habits.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "tests/support/scratch_directory.h"
#include "tests/tools/golden.h"
#include "tools/command.h"

namespace keyvora::tools {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::Pair;

const std::string time = "2026-03-01 09:00:00.000 ";

TEST(HabitsTest, CountsWhatFiredAndWhatLedNowhere) {
  const auto habits = habitsIn(time + "launch 1.0 (5)\n" +            //
                               time + "HVV  Paste values (menu)\n" +  //
                               time + "h v v  Paste values FAILED: no menu bar\n" + time +
                               "HFC  Font color (keytips HFC)\n" +  //
                               time + "no sequence HQ\n" +          //
                               time + "no sequence HQ\n" +          //
                               time + "armed: Option tapped in Excel\n");
  EXPECT_THAT(habits.fired, ElementsAre(Pair("HFC", 1), Pair("HVV", 2)));
  EXPECT_THAT(habits.vain, ElementsAre(Pair("HQ", 2)));
}

TEST(HabitsTest, TakesNothingButLettersFromTheLog) {
  const auto habits =
      habitsIn(time + "no sequence \x1B[2JHQ\n" + time + "no sequence " + std::string(1000, 'A') + "\n" +
               time + "H\x07V  Paste (menu)\n" + time + "no sequence \n\n\n" + "no sequence");
  EXPECT_THAT(habits.fired, IsEmpty());
  EXPECT_THAT(habits.vain, IsEmpty());
}

TEST(HabitsTest, AdvisesByTheDocumentAndByWhatIsShipped) {
  auto log = time + "HX  Cut (keystroke)\n" + time + "HX  Cut (keystroke)\n" + time + "Q  Gone (menu)\n";
  for (const auto* vain : {"HFCC", "HX", "WWWWWW"}) log += time + "no sequence " + vain + "\n";
  EXPECT_EQ(
      asText(habitsIn(log), Document(golden("document.json"))),
      "What you fire most:\n"
      "     2  HX  Cut\n"
      "     1  Q  (no longer in the document)\n"
      "Letters that led nowhere:\n"
      "     1  HFCC  did you mean HFC  Font & color?\n"
      "     1  HX  is there now: Cut\n"
      "     1  WWWWWW  to paste and fill in:\n"
      "    { \"keys\": \"WWWWWW\", \"name\": \"What it does\", \"action\": { \"kind\": \"menu\", \"path\": "
      "[\"Menu\", \"Item\"] } }\n");
}

TEST(HabitsTest, AnEntryThatComesWithKeyvoraIsReadyToPaste) {
  auto calc = contentOf(projectFile("resources/calc.json"));
  const std::string keys = R"("keys": "HVV")";
  calc.replace(calc.find(keys), keys.size(), R"("keys": "QQQQ")");
  const auto text = asText(habitsIn(time + "no sequence HVV\n"), Document(calc));
  EXPECT_THAT(text, HasSubstr("HVV  comes with keyvora; to paste:\n    { \"keys\": \"HVV\", \"name\": "
                              "\"Paste values (Paste Special)\""));
}

TEST(HabitsTest, ReadsTheUsersLogAndSaysWhenThereIsNone) {
  const test::ScratchDirectory home;
  setenv("HOME", home.path().c_str(), 1);
  std::ostringstream out;
  std::ostringstream error;
  EXPECT_EQ(run(std::vector<std::string>{"habits"}, {out, error}), 2);
  EXPECT_THAT(error.str(), HasSubstr("keyvora.log: there is no such log"));
  std::filesystem::create_directories(home / "Library/Logs");
  // Only the end of a very long log is read.
  test::write(home / "Library/Logs/keyvora.log", time + "HVP  Old (menu)\n" +
                                                     std::string(std::size_t{17} * 1024 * 1024, 'x') + "\n" +
                                                     time + "HVV  New (menu)\n");
  EXPECT_EQ(run(std::vector<std::string>{"habits"}, {out, error}), 0);
  EXPECT_THAT(out.str(), HasSubstr("     1  HVV  Paste values\n"));
  EXPECT_THAT(out.str(), Not(HasSubstr("HVP")));
}

}  // namespace
}  // namespace keyvora::tools
