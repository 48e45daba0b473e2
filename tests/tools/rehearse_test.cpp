#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <functional>
#include <sstream>

#include "hosts/posix/temporary_variable.h"
#include "hosts/simulated/host.h"
#include "tests/support/scratch_directory.h"
#include "tests/tools/golden.h"
#include "tools/command.h"

namespace keyvora::tools {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr platform::ProcessIdentifier process = 7;

/// Prepares the simulated system before the program uses it.
std::function<void(simulated::Host&)> setUpSystem;

std::unique_ptr<platform::Host> makeSystem() {
  auto host = std::make_unique<simulated::Host>();
  setUpSystem(*host);
  return host;
}

simulated::TreeElementRef item(simulated::Host& host, const std::string& title, const std::string& shortcut) {
  auto made = host.accessibility.element(title);
  made->attributes["AXKeyShortcutsValue"] = {0, shortcut};
  return made;
}

/// Excel with three menus. One is in a container without a title, as on a Mac.
void startExcel(simulated::Host& host) {
  auto& tree = host.accessibility;
  host.applications.start("com.microsoft.Excel", process);
  const auto format = tree.element("Format", {tree.element("Cells..."), tree.element("Column")});
  const auto edit = tree.element(
      "Edit", {tree.element(std::nullopt, {item(host, "Cut", "command+x"),
                                           item(host, "Paste Special...", "command+control+V")})});
  tree.setMenuBar(process, tree.element(std::nullopt, {edit, format}));
}

/// `rehearse`, with a simulated system and its own PATH.
struct RehearseTest : testing::Test {
  RehearseTest() { setUpSystem = startExcel; }

  int run(std::vector<std::string> arguments = {}) {
    out.str("");
    error.str("");
    arguments.insert(arguments.begin(), {"rehearse", file});
    return tools::run(arguments, {out, error, makeSystem});
  }

  /// The whole output, with the document's file name instead of its path.
  [[nodiscard]] std::string written() const {
    auto text = out.str();
    for (auto at = text.find(file); at != std::string::npos; at = text.find(file)) {
      text.replace(at, file.size(), "rehearsed.json");
    }
    return text;
  }

  /// A script compiler that refuses scripts with the word "wrong".
  void installCompiler() const {
    const auto program = folder / "osacompile";
    test::write(program,
                "#!/bin/sh\n[ \"$1\" = -o ] || exit 9\nwhile read -r line; do\n"
                "case $line in *wrong*) echo 'script:12:17: syntax error: A identifier' >&2; exit 1;; esac\n"
                "done\n");
    ::chmod(program.c_str(), 0755);
  }

  test::ScratchDirectory folder;
  posix::TemporaryVariable path{"PATH", folder.path().string()};
  std::string file = projectFile("tests/tools/golden/rehearsed.json").string();
  std::ostringstream out;
  std::ostringstream error;
};

TEST_F(RehearseTest, FindsAWrongPathAndSaysWhatIsThere) {
  EXPECT_EQ(run(), 1);
  EXPECT_EQ(written(), golden("rehearse.txt"));
  EXPECT_THAT(error.str(), IsEmpty());
}

TEST_F(RehearseTest, TellsWhatItFoundForEverySequence) {
  installCompiler();
  EXPECT_EQ(run({"--all"}), 1);
  EXPECT_EQ(written(), golden("rehearse_all.txt"));
}

TEST_F(RehearseTest, ADocumentWithoutFaultIsDone) {
  file = folder / "mine.json";
  test::write(file, R"({"version": 1, "tabs": {}, "sequences": [
    {"keys": "HOE", "name": "Cells", "action": {"kind": "menu", "path": ["Format", "Cells..."]}}]})");
  EXPECT_EQ(run(), 0);
  EXPECT_EQ(out.str(),
            "menus: Edit, Format\n"
            "1 menu path: 1 found, 0 missing\n"
            "0 keys: 0 shown in the menus, 0 not in a menu\n");
}

TEST_F(RehearseTest, WithoutAProgramToAskItSaysSoAndStillCompiles) {
  setUpSystem = [](simulated::Host&) {};
  installCompiler();
  EXPECT_EQ(run(), 2);
  EXPECT_EQ(error.str(),
            "keyvora-mappings: no spreadsheet is running that could be asked; start it, open a document, try "
            "again\n");
  EXPECT_THAT(out.str(),
              HasSubstr("sequences[5].action.script: Z2: does not compile: script:12:17: syntax error"));
  EXPECT_THAT(out.str(), EndsWith("2 scripts: 1 compiled, 1 failed\n1 sequence of key tips: not tried\n"));
}

TEST_F(RehearseTest, WithoutThePermissionItSaysSo) {
  setUpSystem = [](simulated::Host& host) {
    startExcel(host);
    host.accessibility.trusted = false;
  };
  EXPECT_EQ(run(), 2);
  EXPECT_THAT(error.str(), HasSubstr("no permission to read the menus of other programs"));
}

TEST_F(RehearseTest, AProgramWithoutMenusIsNoProgramToAsk) {
  setUpSystem = [](simulated::Host& host) { host.applications.start("com.microsoft.Excel", process); };
  EXPECT_EQ(run(), 2);
  EXPECT_THAT(error.str(), HasSubstr("the spreadsheet (process 7) shows no menus"));
}

TEST_F(RehearseTest, ADocumentThatDoesNotLoadIsRefused) {
  file = folder / "mine.json";
  test::write(file, "{");
  EXPECT_EQ(run(), 2);
  EXPECT_THAT(error.str(), HasSubstr("mine.json:1:2: error: not valid JSON"));
}

TEST_F(RehearseTest, AProgramBuiltWithoutAHostSaysSo) {
  EXPECT_EQ(tools::run(std::vector<std::string>{"rehearse", file}, {out, error}), 2);
  EXPECT_THAT(error.str(), HasSubstr("built without the means to ask another"));
}

}  // namespace
}  // namespace keyvora::tools
