// keyvora-mappings on real desktops: doctor, and which document the others take.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include "tests/x11/keyboard/client_window.h"
#include "tests/x11/private_session.h"

namespace keyvora::x11 {
namespace {

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

class DoctorTest : public testing::Test {
 protected:
  /// Returns the exit status; the text is in `output`.
  int doctor(const std::vector<std::string>& environment = {}) { return run("doctor", environment); }

  int run(const std::string& arguments, const std::vector<std::string>& environment) {
    Child program({"sh", "-c", "exec \"$0\" " + arguments + " > \"$HOME/output\" 2>&1", KEYVORA_MAPPINGS},
                  environment);
    const int status = program.wait();
    output = readFile(session.home() / "output");
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  PrivateSession session;
  std::string output;
};

TEST_F(DoctorTest, OnASoundDesktopItSaysWhatIsThere) {
  const ClientWindow spreadsheet(session.display().name(), {.process = getpid()});
  ASSERT_TRUE(spreadsheet.awaitFocus());
  EXPECT_EQ(doctor(), 0) << output;
  for (const auto* line :
       {"\nkeyvora +is not running\n", "\ndisplay +:[0-9]+, ", "\nwindow manager +Openbox\n",
        "\nkeyboard layout +us\n", "\nOption keys +Alt_L \\(64\\)", "\naccessibility bus +there\n",
        "\nosascript +", "\nspreadsheet +[^\n]+, process [0-9]+, language ",
        "\ndocument +[^\n]*/keyvora/mappings.json, which the first start makes\n",
        "\nlog +[^\n]*/Library/Logs/keyvora.log\n",
        "\nNothing that is known here keeps sequences from working.\n"}) {
    EXPECT_THAT(output, ContainsRegex(line));
  }
  EXPECT_FALSE(std::filesystem::exists(session.home() / "Library")) << "it changes nothing";
}

TEST_F(DoctorTest, WithoutADisplayItSaysSo) {
  EXPECT_EQ(doctor({"DISPLAY="}), 1);
  EXPECT_THAT(output, ContainsRegex("\ndisplay +none\n"));
  EXPECT_THAT(output, HasSubstr("no display to work on: There is no X display: DISPLAY is not set."));
}

TEST_F(DoctorTest, WithoutAWindowManagerItFails) {
  const_cast<PrivateDisplay&>(session.display()).endWindowManager();
  EXPECT_EQ(doctor(), 1);
  EXPECT_THAT(output, HasSubstr("\nno window manager: "));
}

TEST_F(DoctorTest, WithoutAnAccessibilityBusItFails) {
  session.endBuses();
  EXPECT_EQ(doctor(), 1);
  EXPECT_THAT(output, ContainsRegex("\naccessibility bus +none\n"));
  EXPECT_THAT(output, HasSubstr("\nno accessibility bus: "));
}

TEST_F(DoctorTest, ADocumentWithErrorsFails) {
  writeFile(session.home() / "Library/Application Support/keyvora/mappings.json", "{");
  EXPECT_EQ(doctor(), 1);
  EXPECT_THAT(output, HasSubstr("mappings.json, which does not load\n"));
  EXPECT_THAT(output, ContainsRegex("mappings.json:1:[0-9]+: error: "));
}

TEST_F(DoctorTest, BesideARunningKeyvoraItFindsNothingInTheWay) {
  const ClientWindow spreadsheet(session.display().name(), {});
  ASSERT_TRUE(spreadsheet.awaitFocus());
  Child keyvora({KEYVORA_PROGRAM}, {});
  const auto log = session.home() / "Library/Logs/keyvora.log";
  ASSERT_TRUE(runUntil([&] { return readFile(log).find("tap installed") != std::string::npos; }));
  EXPECT_EQ(doctor(), 0) << output;
  EXPECT_THAT(output, ContainsRegex("\nkeyvora +is running\n"));
  EXPECT_THAT(output, Not(HasSubstr("another program")));
  EXPECT_THAT(output, ContainsRegex("mappings.json, [0-9]+ sequences\n"));
  kill(keyvora.pid(), SIGTERM);
  EXPECT_EQ(keyvora.wait(), 0);
}

/// Programs of others that take Option alone, and how each names the key.
struct Grabber {
  std::string program;
  std::string options;
  std::string configuration;
};

class GrabberTest : public DoctorTest, public testing::WithParamInterface<Grabber> {};

TEST_P(GrabberTest, IsFoundByDoctorAndAtTheStart) {
  const auto& [name, options, configuration] = GetParam();
  const auto file = session.home() / "configuration";
  writeFile(file, configuration);
  ASSERT_EQ(doctor(), 0) << output;
  // sxhkd ends at once where no SHELL is set, as in a container or a service.
  const Child grabber({"sh", "-c", "exec " + name + " " + options + " \"$HOME/configuration\""},
                      {"SHELL=/bin/sh"});
  const auto finding =
      "another program holds the Option key: A tap of Option goes to that program and starts no sequence.";
  ASSERT_TRUE(runUntil([&] { return doctor() == 1; })) << output;
  EXPECT_THAT(output, HasSubstr("\n" + std::string(finding) + "\n  Take Option (Alt) alone out of "));

  Child keyvora({KEYVORA_PROGRAM}, {});
  const auto log = session.home() / "Library/Logs/keyvora.log";
  EXPECT_TRUE(runUntil([&] { return readFile(log).find(finding) != std::string::npos; })) << readFile(log);
  kill(keyvora.pid(), SIGTERM);
  EXPECT_EQ(keyvora.wait(), 0);
}

INSTANTIATE_TEST_SUITE_P(Real, GrabberTest,
                         testing::Values(Grabber{"sxhkd", "-c", "Alt_L\n  true\n"},
                                         Grabber{"xbindkeys", "-n -f", "\"true\"\n  Alt_L\n"}),
                         [](const auto& test) { return test.param.program; });

TEST_F(DoctorTest, WithoutADocumentOtherCommandsTakeThatOfTheInstalledSpreadsheet) {
  const auto share = session.home() / "share";
  const auto list = [&] { return run("list --tab HDS", {"XDG_DATA_DIRS=" + share.string()}); };
  writeFile(share / "applications" / "gnumeric.desktop", "");
  EXPECT_EQ(list(), 0) << output;
  EXPECT_THAT(output, HasSubstr("this is the one that keyvora starts with: "));
  EXPECT_THAT(output, HasSubstr("/keyvora_keyvora.bundle/gnumeric.json\n"));
  writeFile(share / "applications" / "libreoffice-calc.desktop", "");
  EXPECT_EQ(list(), 0) << output;
  EXPECT_THAT(output, HasSubstr("/keyvora_keyvora.bundle/calc.json\n"));
}

}  // namespace
}  // namespace keyvora::x11
