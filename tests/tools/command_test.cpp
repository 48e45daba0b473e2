#include "tools/command.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <optional>
#include <sstream>

#include "hosts/posix/temporary_variable.h"
#include "hosts/simulated/host.h"
#include "tests/support/scratch_directory.h"
#include "tests/tools/golden.h"
#include "tools/commands.h"
#include "tools/embedded.h"

namespace keyvora::tools {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

/// The document that the simulated system's resources hold; it is there when the path is not empty.
std::filesystem::path bundledDocument;

std::unique_ptr<platform::Host> makeSystem() {
  auto host = std::make_unique<simulated::Host>();
  for (auto& [directory, bundle] : host->bundles.others) bundle.resources = {};
  if (!bundledDocument.empty()) {
    host->bundles.others.begin()->second.resources = {{"mappings.json", bundledDocument}};
  }
  return host;
}

/// The program, run with its own home directory.
struct CommandTest : testing::Test {
  CommandTest() { setenv("HOME", home.path().c_str(), 1); }

  int run(const std::vector<std::string>& arguments) {
    out.str("");
    error.str("");
    return tools::run(arguments, {out, error, host, terminal});
  }

  /// The user's own document.
  void write(const std::string& bytes) const {
    const auto file = home / "Library/Application Support/keyvora/mappings.json";
    std::filesystem::create_directories(file.parent_path());
    test::write(file, bytes);
  }

  test::ScratchDirectory home;
  std::ostringstream out;
  std::ostringstream error;
  HostMaker host = nullptr;
  std::optional<Terminal> terminal;
};

const std::string sound = R"({"version": 1, "tabs": {}, "sequences": [
  {"keys": "QQ", "name": "Mine", "action": {"kind": "menu", "path": ["A"]}}]})";
const std::string surprising = R"({"version": 1, "tabs": {}, "sequences": [
  {"keys": "Q-", "name": "Mine", "action": {"kind": "menu", "path": ["A"]}}]})";

TEST_F(CommandTest, ChecksTheUsersOwnDocument) {
  write(sound);
  EXPECT_EQ(run({"check"}), 0);
  EXPECT_THAT(out.str() + error.str(), IsEmpty());
  write("{}");
  EXPECT_EQ(run({"check"}), 1);
  EXPECT_THAT(out.str(),
              StartsWith((home / "Library/Application Support/keyvora/mappings.json:1:1: error: ").string()));
  EXPECT_THAT(error.str(), IsEmpty());
}

TEST_F(CommandTest, AFileThatCannotBeReadToItsEndIsAnError) {
  const std::string broken = "/proc/self/mem";  // Linux lets it be opened and refuses to read its beginning
  if (!std::filesystem::exists(broken)) GTEST_SKIP() << "no file here can be opened and not read";
  EXPECT_EQ(run({"check", broken}), 2);
  EXPECT_EQ(error.str(), "keyvora-mappings: " + broken + ": could not be read to its end\n");
  std::ifstream input(broken);
  auto* before = std::cin.rdbuf(input.rdbuf());
  EXPECT_EQ(run({"check", "-"}), 2);
  std::cin.rdbuf(before);
  std::cin.clear();
  EXPECT_EQ(error.str(), "keyvora-mappings: <standard input>: could not be read to its end\n");
}

TEST_F(CommandTest, WarningsCountOnlyWhenTheyAreAskedTo) {
  write(surprising);
  EXPECT_EQ(run({"check"}), 0);
  EXPECT_THAT(out.str(), HasSubstr(":2:12: warning: "));
  EXPECT_EQ(run({"check", "--strict"}), 1);
  EXPECT_EQ(run({"check", "--json"}), 0);
  EXPECT_THAT(out.str(), StartsWith("{\"file\":"));
}

TEST_F(CommandTest, ADocumentThatIsNotThereCannotBeChecked) {
  EXPECT_EQ(run({"check", (home / "mine.json").string()}), 2);
  EXPECT_THAT(error.str(), HasSubstr("mine.json: No such file or directory"));
  EXPECT_EQ(run({"check", home.path().string()}), 2);
  EXPECT_EQ(error.str(), "keyvora-mappings: " + home.path().string() + ": is a directory\n");
  EXPECT_THAT(out.str(), IsEmpty());
  EXPECT_EQ(run({"check", "--watch"}), 2);
  EXPECT_EQ(error.str(), "keyvora-mappings: you have no document yet; name a file to watch\n");
}

TEST_F(CommandTest, ChecksTheDefaultDocumentUntilTheUserHasOne) {
  terminal = Terminal{};
  EXPECT_EQ(run({"check"}), 0);
  EXPECT_THAT(out.str(), testing::MatchesRegex("<default document>: [0-9]+ sequences, nothing to report\n"));
  EXPECT_THAT(error.str(), StartsWith("keyvora-mappings: you have no document yet; this is the one that "
                                      "keyvora starts with, for Excel\n"));
}

TEST_F(CommandTest, WithoutADocumentItTakesTheOneThatKeyvoraWouldStartWith) {
  host = makeSystem;
  bundledDocument = home / "calc.json";
  test::write(bundledDocument, sound);
  const auto note = "keyvora-mappings: you have no document yet; this is the one that keyvora starts with: " +
                    bundledDocument.string() + "\n";
  EXPECT_EQ(run({"list"}), 0);
  EXPECT_EQ(out.str(), "QQ  Mine  menu         A\n");
  EXPECT_EQ(error.str(), note);
  EXPECT_EQ(run({"explain", "qq"}), 0);
  EXPECT_EQ(error.str(), note);
  EXPECT_EQ(run({"cheatsheet", "--markdown"}), 0);
  EXPECT_THAT(out.str(), HasSubstr("Mine"));
  terminal = Terminal{};
  EXPECT_EQ(run({"check"}), 0);
  EXPECT_EQ(out.str(), bundledDocument.string() + ": 1 sequence, nothing to report\n");
  EXPECT_EQ(error.str(), note);

  test::write(home / "named.json", sound);
  EXPECT_EQ(run({"list", (home / "named.json").string()}), 0);
  EXPECT_THAT(error.str(), IsEmpty());
  write(sound);
  EXPECT_EQ(run({"list"}), 0);
  EXPECT_THAT(error.str(), IsEmpty());
}

TEST_F(CommandTest, WithoutResourcesInPlaceItTakesExcelsDocument) {
  host = makeSystem;
  bundledDocument.clear();
  EXPECT_EQ(run({"explain", "hvv"}), 0);
  EXPECT_THAT(error.str(), testing::EndsWith("keyvora starts with, for Excel\n"));
}

TEST_F(CommandTest, ChecksSeveralFilesAndEndsWithTheWorst) {
  const auto file = [this](const std::string& name, const std::string& bytes) {
    test::write(home / name, bytes);
    return (home / name).string();
  };
  const auto good = file("good.json", sound);
  const auto bad = file("bad.json", "{");
  EXPECT_EQ(run({"check", good, good}), 0);
  EXPECT_EQ(run({"check", bad, good, file("odd.json", surprising)}), 1);
  EXPECT_THAT(out.str(), HasSubstr("bad.json:1:2: error: "));
  EXPECT_THAT(out.str(), HasSubstr("odd.json:2:12: warning: "));
  EXPECT_EQ(run({"check", home / "none.json", bad}), 2);
  EXPECT_THAT(out.str(), HasSubstr("bad.json:1:2: error: "));
  EXPECT_EQ(run({"check", "--json", good, good}), 0);
  EXPECT_EQ(std::ranges::count(out.str(), '\n'), 2);
}

TEST_F(CommandTest, ATerminalGetsALineOfSuccess) {
  write(sound);
  terminal = Terminal{};
  EXPECT_EQ(run({"check"}), 0);
  EXPECT_THAT(out.str(), HasSubstr("mappings.json: 1 sequence, nothing to report\n"));
  EXPECT_EQ(run({"check", "--json"}), 0);
  EXPECT_THAT(out.str(), StartsWith("{"));
}

TEST_F(CommandTest, ATerminalGetsTheLineWithACaretAndColoursWhereItHasThem) {
  write(surprising);
  terminal = Terminal{};
  EXPECT_EQ(run({"check"}), 0);
  const auto plain = out.str();
  EXPECT_THAT(plain,
              HasSubstr("  2 |   {\"keys\": \"Q-\", \"name\": \"Mine\", \"action\": {\"kind\": \"menu\","
                        " \"path\": [\"A\"]}}]}\n"
                        "    |            ^\n"));
  terminal = Terminal{true};
  EXPECT_EQ(run({"check"}), 0);
  EXPECT_THAT(out.str(), HasSubstr("\x1B[1;35mwarning:\x1B[0m sequences[0].keys: no key produces"));
  EXPECT_THAT(out.str(), HasSubstr("\x1B[1;32m^\x1B[0m\n"));
}

TEST_F(CommandTest, ATerminalGetsNothingThatItWouldTakeForACommand) {
  terminal = Terminal{};
  write(
      "{\"a\x1B[2J\xC2\x9B"
      "1m\t\": 1}");
  EXPECT_EQ(run({"check"}), 1);
  EXPECT_THAT(out.str(), testing::Not(HasSubstr("\x1B")));
  EXPECT_THAT(out.str(), testing::Not(HasSubstr("\xC2\x9B")));
}

TEST_F(CommandTest, ALongLineIsCutToThePlace) {
  terminal = Terminal{};
  write(R"({"version": 1, "tabs": {}, "notes": [")" + std::string(500, 'x') + R"("], "sequences": 7})");
  EXPECT_EQ(run({"check"}), 1);
  std::istringstream lines(out.str());
  std::string finding;
  std::string line;
  std::string caret;
  std::getline(lines, finding);
  std::getline(lines, line);
  std::getline(lines, caret);
  EXPECT_LT(line.size(), 120U);
  EXPECT_THAT(line, HasSubstr("| …xxx"));
  // The ellipsis at the cut takes three bytes and one column.
  EXPECT_EQ(line.at(caret.find('^') + 2), '7') << line << "\n" << caret;
}

TEST_F(CommandTest, SaysHowManyActionsCannotRunWithoutAMac) {
  write(R"({"version": 1, "tabs": {}, "sequences": [
    {"keys": "A", "name": "Script", "action": {"kind": "applescript", "script": "activate"}},
    {"keys": "B", "name": "Tips", "action": {"kind": "keytips", "keys": "HH"}},
    {"keys": "C", "name": "Menu", "action": {"kind": "menu", "path": ["A"]}}]})");
  const posix::TemporaryVariable path("PATH", home.path().string());
  EXPECT_EQ(run({"check", "--strict"}), 0);
  EXPECT_THAT(error.str(),
              HasSubstr("mappings.json: 2 actions cannot run here: 1 script, for want of osascript, "
                        "and 1 sequence of Excel's own key tips\n"));
  std::filesystem::create_symlink("/bin/sh", home / "osascript");
  EXPECT_EQ(run({"check", "--strict"}), 0);
  EXPECT_THAT(error.str(), IsEmpty());
}

TEST_F(CommandTest, OtherCommandsTakeTheDefaultDocumentUntilTheUserHasOne) {
  EXPECT_EQ(run({"explain", "hvv"}), 0);
  EXPECT_THAT(out.str(), HasSubstr("fires HVV  Paste values"));
  write(sound);
  EXPECT_EQ(run({"explain", "hvv"}), 1);
  EXPECT_EQ(run({"explain", "q q"}), 0);
  EXPECT_EQ(run({"list"}), 0);
  EXPECT_EQ(out.str(), "QQ  Mine  menu         A\n");
}

TEST_F(CommandTest, ListsWhatStartsWithLetters) {
  EXPECT_EQ(run({"list", "--tab", "w"}), 0);
  EXPECT_THAT(out.str(), StartsWith("WL   Normal view"));
  EXPECT_EQ(run({"list", "--tab", "w f"}), 0);
  EXPECT_THAT(out.str(), StartsWith("WF"));
  EXPECT_THAT(out.str(), testing::Not(HasSubstr("\nWL")));
  EXPECT_EQ(run({"list", "--tab=q"}), 1);
  EXPECT_THAT(out.str(), IsEmpty());
  EXPECT_THAT(error.str(), testing::EndsWith("keyvora-mappings: no sequence starts with \"q\"\n"));
}

TEST_F(CommandTest, WritesSheetsAndTheSchema) {
  EXPECT_EQ(run({"cheatsheet"}), 0);
  EXPECT_THAT(out.str(), StartsWith("<!DOCTYPE html>"));
  const auto html = out.str();
  EXPECT_EQ(run({"cheatsheet", "--html"}), 0);
  EXPECT_EQ(out.str(), html);
  EXPECT_EQ(run({"cheatsheet", "--markdown"}), 0);
  EXPECT_THAT(out.str(), StartsWith("# Key sequences"));
  EXPECT_EQ(run({"schema"}), 0);
  EXPECT_EQ(out.str(), contentOf(projectFile("resources/mappings.schema.json")));
}

TEST_F(CommandTest, OpensTheSheetInTheBrowser) {
  const auto program = home / "xdg-open";
  test::write(program, "#!/bin/sh\nwhile read -r line; do echo \"$line\"; done <\"$1\" >\"$HOME/opened\"\n");
  const posix::TemporaryVariable path("PATH", home.path().string());
  EXPECT_EQ(run({"cheatsheet", "--open"}), 2);
  EXPECT_THAT(error.str(), HasSubstr("there is no program that opens files"));
  std::filesystem::permissions(program, std::filesystem::perms::owner_all);
  std::signal(SIGCHLD, SIG_IGN);  // as it is inherited from some programs
  EXPECT_EQ(run({"cheatsheet", "--open"}), 0) << error.str();
  EXPECT_THAT(contentOf(home / "opened"), StartsWith("<!DOCTYPE html>"));
  std::filesystem::remove_all(std::filesystem::path(out.str()).parent_path());
  EXPECT_EQ(run({"cheatsheet", "--open", "--markdown"}), 2);
  EXPECT_EQ(error.str(), "keyvora-mappings: --open and --markdown exclude each other\n");
  const posix::TemporaryVariable noFolder("TMPDIR", "/nowhere");
  EXPECT_EQ(run({"cheatsheet", "--open"}), 2) << out.str();
  EXPECT_THAT(error.str(), HasSubstr("there is no folder for temporary files; set TMPDIR"));
}

TEST_F(CommandTest, ADocumentThatDoesNotLoadIsRefusedWithItsErrors) {
  write("{");
  for (const std::string command : {"list", "cheatsheet"}) {
    EXPECT_EQ(run({command}), 2);
    EXPECT_THAT(error.str(), HasSubstr("mappings.json:1:2: error: not valid JSON"));
    EXPECT_THAT(out.str(), IsEmpty());
  }
}

TEST_F(CommandTest, WrongUsageSaysWhatAndHowToGoOn) {
  struct Case {
    std::vector<std::string> arguments;
    std::string message;
  };
  const Case cases[] = {
      {{"frob"}, "unknown command frob; try: keyvora-mappings help"},
      {{"check", "--fast"}, "unknown option --fast; try: keyvora-mappings help check"},
      {{"check", "--strct"},
       "unknown option --strct (did you mean --strict?); try: keyvora-mappings help check"},
      {{"list", "--tabs=H"}, "unknown option --tabs (did you mean --tab?); try: keyvora-mappings help list"},
      {{"check", "--json=1"}, "option --json takes no value; try: keyvora-mappings help check"},
      {{"list", "a", "b"}, "too many arguments: b; try: keyvora-mappings help list"},
      {{"chekc"}, "unknown command chekc; did you mean check?"},
      {{"help", "ls"}, "unknown command ls; try: keyvora-mappings help"},
      {{"list", "--tab"}, "option --tab needs a value; try: keyvora-mappings help list"},
      {{"explain"}, "an argument is missing; try: keyvora-mappings help explain"},
      {{"explain", "H-F"}, "no key produces \"-\"; only letters and digits can be typed"},
      {{"cheatsheet", "--html", "--markdown"}, "--html and --markdown exclude each other"},
      {{"check", "--watch", "-"}, "--watch needs a file"},
      {{"help", "frob"}, "unknown command frob; try: keyvora-mappings help"},
  };
  for (const auto& [arguments, message] : cases) {
    EXPECT_EQ(run(arguments), 2) << message;
    EXPECT_EQ(error.str(), "keyvora-mappings: " + message + "\n");
    EXPECT_THAT(out.str(), IsEmpty());
  }
}

TEST_F(CommandTest, ADoubleDashEndsTheOptions) {
  EXPECT_EQ(run({"check", "--", "--watch"}), 2);
  EXPECT_EQ(error.str(), "keyvora-mappings: --watch: No such file or directory\n");
}

TEST_F(CommandTest, HelpIsOutputWhenAskedForAndAnErrorOtherwise) {
  EXPECT_EQ(run({}), 2);
  EXPECT_THAT(out.str(), IsEmpty());
  const auto text = error.str();
  for (const std::string ask : {"help", "--help", "-h"}) {
    EXPECT_EQ(run({ask}), 0);
    EXPECT_EQ(out.str(), text);
  }
  for (const auto& command : commands()) {
    EXPECT_THAT(text, HasSubstr(std::string(command.name)));
    EXPECT_EQ(run({"help", std::string(command.name)}), 0);
    const auto own = out.str();
    EXPECT_THAT(own, StartsWith("usage: keyvora-mappings " + std::string(command.name)));
    EXPECT_EQ(run({std::string(command.name), "--help"}), 0);
    EXPECT_EQ(out.str(), own);
  }
}

TEST_F(CommandTest, TellsItsVersion) {
  EXPECT_EQ(run({"--version"}), 0);
  EXPECT_EQ(out.str(), "keyvora-mappings " + std::string(embedded::version) + "\n");
}

/// The manual page and the shell completions must contain every command and option.
TEST(CommandDocumentationTest, NamesEverything) {
  for (const std::string file : {"keyvora-mappings.1", "completions/keyvora-mappings.bash",
                                 "completions/_keyvora-mappings", "completions/keyvora-mappings.fish"}) {
    auto text = contentOf(projectFile("tools/" + file));
    std::erase(text, '\\');
    const bool isFish = file.ends_with(".fish");
    for (const auto& command : commands()) {
      EXPECT_THAT(text, HasSubstr(std::string(command.name))) << file;
      for (const auto& names : {command.syntax.switches, command.syntax.settings}) {
        for (const auto name : names) {
          const auto written = isFish ? "-l " + std::string(name.substr(2)) : std::string(name);
          EXPECT_THAT(text, HasSubstr(written)) << file;
        }
      }
    }
  }
}

}  // namespace
}  // namespace keyvora::tools
