#include "hosts/x11/workspace.h"

#include <gtest/gtest.h>

#include "hosts/x11/accessibility/accessibility_settings.h"
#include "tests/x11/private_display.h"
#include "tests/x11/recording_console.h"
#include "tests/x11/scratch.h"

namespace keyvora::x11 {
namespace {

namespace fs = std::filesystem;

using Words = std::vector<std::string>;

/// GLib reads the user's directories once per process, so all tests share these.
const fs::path& home() {
  static const ScratchDirectory scratch;
  return scratch.path();
}

class WorkspaceTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    setenv("HOME", home().c_str(), 1);
    setenv("XDG_DATA_HOME", (home() / "data").c_str(), 1);
    setenv("XDG_CONFIG_HOME", (home() / "config").c_str(), 1);
    setenv("XDG_CURRENT_DESKTOP", "", 1);
    setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent", 1);
    setenv("OUTPUT", (home() / "opened").c_str(), 1);
    writeProgram(home() / "bin" / "handler", R"(echo "$1" > "$OUTPUT.part"; mv "$OUTPUT.part" "$OUTPUT")");
    writeFile(
        home() / "data" / "applications" / "handler.desktop",
        "[Desktop Entry]\nType=Application\nName=Handler\nExec=" + (home() / "bin" / "handler").string() +
            " %u\nMimeType=application/json;text/x-log;text/plain;x-scheme-handler/testing;\n");
    writeFile(home() / "config" / "mimeapps.list",
              "[Default Applications]\napplication/json=handler.desktop\ntext/plain=handler.desktop\n"
              "text/x-log=handler.desktop\nx-scheme-handler/testing=handler.desktop\n");
  }

  /// What the handler received; empty when nothing came in time.
  static std::string opened() {
    const auto file = home() / "opened";
    runUntil([&file] { return fs::exists(file); });
    auto text = readFile(file);
    fs::remove(file);
    return text;
  }

  RecordingConsole console;
  Notices notices{console};
  Workspace workspace{notices};
};

TEST_F(WorkspaceTest, AFileOpensByTheHandlerOfItsType) {
  const auto file = home() / "Application Support" / "mappings & ⌥.json";
  writeFile(file, "{}");
  workspace.openFile(file.string());
  const auto text = opened();
  EXPECT_TRUE(text == file.string() + "\n" ||
              text == "file://" + home().string() + "/Application%20Support/mappings%20&%20%E2%8C%A5.json\n")
      << text;
}

TEST_F(WorkspaceTest, AnAddressOpensByTheHandlerOfItsScheme) {
  workspace.openAddress("testing:page?with=query");
  EXPECT_EQ(opened(), "testing:page?with=query\n");
}

TEST_F(WorkspaceTest, AnAddressThatDoesNotFormIsPassedOver) {
  workspace.openAddress("no address at all");
  workspace.openAddress("");
  workspace.openAddress("testing:after");
  EXPECT_EQ(opened(), "testing:after\n");
  EXPECT_EQ(console.records, std::vector<std::string>{});
}

TEST_F(WorkspaceTest, WhatNothingOpensIsSaidOnce) {
  for (int time = 0; time < 2; ++time) workspace.openAddress("unheard-of:page");
  ASSERT_TRUE(runUntil([this] { return !console.records.empty(); }));
  workspace.openAddress("testing:after");
  opened();
  ASSERT_EQ(console.records.size(), 1u);
  EXPECT_EQ(console.records.front().find("keyvora: unheard-of:page cannot be opened: "), 0u)
      << console.records.front();
}

TEST_F(WorkspaceTest, TheAccessibilityAddressOpensTheSettingsOfTheDesktop) {
  const Variable path("PATH", (home() / "bin").string() + ":/usr/bin:/bin");
  const Variable desktop("XDG_CURRENT_DESKTOP", "ubuntu:GNOME");
  const auto program = home() / "bin" / "gnome-control-center";
  writeProgram(program, R"(echo "$@" > "$OUTPUT.part"; mv "$OUTPUT.part" "$OUTPUT")");
  workspace.openAddress(std::string(accessibilitySettingsAddress));
  EXPECT_EQ(opened(), "universal-access\n");
  fs::remove(program);
}

TEST_F(WorkspaceTest, WhereNoSettingsAreKnownThatIsSaid) {
  const Variable path("PATH", (home() / "nothing").string());
  workspace.openAddress(std::string(accessibilitySettingsAddress));
  EXPECT_EQ(
      console.records,
      Words{"keyvora: This desktop has no accessibility settings that are known here. None are needed: the "
            "display is all that key sequences ask for."});
}

TEST(AccessibilitySettings, TheDesktopThatRunsComesFirstAndAnyOtherNext) {
  const ScratchDirectory scratch;
  const Variable path("PATH", scratch.path().string());
  EXPECT_EQ(accessibilitySettingsCommand("GNOME"), std::nullopt);
  writeProgram(scratch.path() / "xfce4-accessibility-settings", "");
  EXPECT_EQ(accessibilitySettingsCommand("GNOME"), Words{"xfce4-accessibility-settings"});
  writeProgram(scratch.path() / "gnome-control-center", "");
  writeProgram(scratch.path() / "systemsettings5", "");
  const struct {
    const char* desktop;
    Words command;
  } cases[] = {
      {"GNOME", {"gnome-control-center", "universal-access"}},
      {"ubuntu:GNOME", {"gnome-control-center", "universal-access"}},
      {"XFCE", {"xfce4-accessibility-settings"}},
      {"KDE", {"systemsettings5", "kcm_access"}},
      {"", {"gnome-control-center", "universal-access"}},
      {"XFCE4", {"gnome-control-center", "universal-access"}},
      {"Enlightenment", {"gnome-control-center", "universal-access"}},
  };
  for (const auto& [desktop, command] : cases)
    EXPECT_EQ(accessibilitySettingsCommand(desktop), command) << desktop;
}

}  // namespace
}  // namespace keyvora::x11
