#include <gtest/gtest.h>

#include <csignal>
#include <sstream>

#include "tests/x11/conversation.h"
#include "tests/x11/private_session.h"
#include "tests/x11/status/narrow_tray.h"

/// The item in a tray while the user changes the desktop's scale and theme.
namespace keyvora::x11 {
namespace {

/// Whether a process has a handler for the signal, which may end it until then.
bool catches(pid_t process, int number) {
  std::istringstream status(readFile("/proc/" + std::to_string(process) + "/status"));
  const std::string name = "SigCgt:";
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with(name))
      return (std::stoull(line.substr(name.size()), nullptr, 16) >> (number - 1) & 1) != 0;
  }
  return false;
}

/// The desktop's settings, which running GTK programs follow.
class Settings {
 public:
  explicit Settings(const std::filesystem::path& file, const std::string& text) : file_(file) {
    writeFile(file_, text);
    daemon_ = Child({"xsettingsd", "-c", file_.string()}, {});
    if (!runUntil([&] { return catches(daemon_.pid(), SIGHUP); })) {
      throw std::runtime_error("xsettingsd does not run");
    }
  }

  void change(const std::string& text) {
    writeFile(file_, text);
    kill(daemon_.pid(), SIGHUP);
  }

 private:
  std::filesystem::path file_;
  Child daemon_;
};

class AppearanceTest : public testing::Test {
 protected:
  void start(NarrowTray& tray) {
    program = std::make_unique<Conversation>(std::vector<std::string>{STATUS_ITEM_PROGRAM});
    tell("title ⌥");
    ASSERT_TRUE(runUntil([&] { return tray.hasIcon(); }));
  }

  void tell(const std::string& line) {
    program->say(line);
    ASSERT_TRUE(program->hears("ready"));
  }

  int draws() {
    program->say("draws");
    return std::stoi(program->answer());
  }

  PrivateSession session;
  Settings settings{session.home() / "settings", "Gdk/WindowScalingFactor 1\nNet/ThemeName \"Adwaita\"\n"};
  std::unique_ptr<Conversation> program;
};

TEST_F(AppearanceTest, TheTrayChoosesTheSizeOfTheItem) {
  constexpr int width = 200;
  constexpr int height = 48;
  NarrowTray tray(width, height);
  start(tray);
  tell("title ⌥ HFCI");
  tell("drawn");
  EXPECT_TRUE(runUntil([&] { return tray.look().dark > (width - 20) * height; })) << "it fills its slot";
}

TEST_F(AppearanceTest, AtAnotherScaleAllOfTheItemIsDrawn) {
  constexpr int height = 48;
  NarrowTray tray(200, height, NarrowTray::Sizes::asRequested);
  start(tray);
  tell("title ⌥ HFCI");
  // The item is about 62 by 17 pixels.
  ASSERT_TRUE(runUntil([&] { return tray.look().dark > 50 * 12; }));
  EXPECT_LT(tray.look().dark, 70 * 20);
  settings.change("Gdk/WindowScalingFactor 2\nNet/ThemeName \"Adwaita\"\n");
  EXPECT_TRUE(runUntil([&] { return tray.look().dark > 100 * 24; })) << "twice as wide and high";
}

TEST_F(AppearanceTest, AtAnotherScaleTheIconIsDrawnForItsSlotAgain) {
  constexpr int size = 48;
  constexpr int half = size * size / 2;
  NarrowTray tray(size, size);
  start(tray);
  tell("title ⌥ HFCI");
  // The empty slot is all bright, the item without letters mostly dark.
  ASSERT_TRUE(runUntil([&] { return tray.look().bright > half && tray.look().dark > size; }));
  tell("drawn");
  const auto fourLetters = tray.look();
  settings.change("Gdk/WindowScalingFactor 2\nNet/ThemeName \"Adwaita\"\n");
  EXPECT_TRUE(runUntil([&] {
    const auto look = tray.look();
    return look != fourLetters && look.bright > half;
  })) << "the slot has room for three letters of this scale";
  // Again and again: the slot may still change its size, and the icon is drawn in part while it does.
  const auto drawnAs = [&](const std::string& title) {
    tell("title " + title);
    tell("drawn");
    return tray.look();
  };
  EXPECT_TRUE(runUntil([&] { return drawnAs("⌥ FCI") == drawnAs("⌥ HFCI"); })) << "the last three";
  tell("title ⌥");
  EXPECT_TRUE(runUntil([&] { return tray.look().dark > half && tray.look().bright > size; })) << "idle";
  settings.change("Gdk/WindowScalingFactor 1\nNet/ThemeName \"Adwaita\"\n");
  EXPECT_TRUE(runUntil([&] { return drawnAs("⌥ HFCI") == fourLetters; })) << "as before";
}

TEST_F(AppearanceTest, TheTextIsReadOnItsOwnGroundInEveryTheme) {
  NarrowTray tray(120, 24);
  start(tray);
  tell("title ⌥ HFC");
  const auto isRead = [&] {
    const auto look = tray.look();
    return look.dark > 600 && look.bright > 40;
  };
  EXPECT_TRUE(runUntil(isRead)) << "Adwaita: " << tray.look().bright << " bright";
  for (const auto* theme : {"HighContrast", "HighContrastInverse", "Adwaita"}) {
    const int before = draws();
    settings.change("Gdk/WindowScalingFactor 1\nNet/ThemeName \"" + std::string(theme) + "\"\n");
    EXPECT_TRUE(runUntil([&] { return draws() > before; })) << theme;
    EXPECT_TRUE(runUntil(isRead)) << theme << ": " << tray.look().bright << " bright, " << tray.look().dark
                                  << " dark";
  }
}

}  // namespace
}  // namespace keyvora::x11
