#include "hosts/x11/login_service.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include "tests/x11/scratch.h"

namespace keyvora::x11 {
namespace {

namespace fs = std::filesystem;
using platform::LoginStatus;

class LoginServiceTest : public testing::Test {
 protected:
  fs::path entry() const { return scratch.path() / ".config" / "autostart" / "org.keyvora.keyvora.desktop"; }

  ScratchDirectory scratch;
  Variable home{"HOME", scratch.path().string()};
  Variable configuration{"XDG_CONFIG_HOME", std::nullopt};
  LoginService service{"/opt/key vora/bin/keyvora"};
};

TEST_F(LoginServiceTest, RegisteringWritesAnEntryAndUnregisteringRemovesIt) {
  EXPECT_EQ(service.status(), LoginStatus::notRegistered);
  EXPECT_EQ(service.registerProgram(), std::nullopt);
  EXPECT_EQ(service.status(), LoginStatus::enabled);
  EXPECT_EQ(readFile(entry()),
            "[Desktop Entry]\n"
            "Type=Application\n"
            "Name=keyvora\n"
            "Comment=Key sequences for Excel in the manner of ribbon key tips\n"
            "Exec=\"/opt/key vora/bin/keyvora\"\n"
            "Icon=keyvora\n"
            "Terminal=false\n");
  EXPECT_EQ(service.unregisterProgram(), std::nullopt);
  EXPECT_EQ(service.status(), LoginStatus::notRegistered);
  EXPECT_FALSE(fs::exists(entry()));
  EXPECT_EQ(service.unregisterProgram(), std::nullopt) << "nothing to take back";
}

TEST_F(LoginServiceTest, TheConfigurationDirectoryOfTheUserIsHonoured) {
  const Variable elsewhere("XDG_CONFIG_HOME", (scratch.path() / "elsewhere").string());
  EXPECT_EQ(service.registerProgram(), std::nullopt);
  EXPECT_TRUE(fs::exists(scratch.path() / "elsewhere" / "autostart" / "org.keyvora.keyvora.desktop"));
  EXPECT_FALSE(fs::exists(entry()));
}

TEST_F(LoginServiceTest, WhatTheDesktopSwitchedOffIsNotRegistered) {
  const struct {
    const char* text;
    LoginStatus status;
  } cases[] = {
      {"[Desktop Entry]\nType=Application\nExec=keyvora\n", LoginStatus::enabled},
      {"[Desktop Entry]\nExec=keyvora\nHidden=false\n", LoginStatus::enabled},
      {"[Desktop Entry]\nExec=keyvora\nHidden=true\n", LoginStatus::notRegistered},
      {"[Desktop Entry]\nExec=keyvora\nX-GNOME-Autostart-enabled=true\n", LoginStatus::enabled},
      {"[Desktop Entry]\nExec=keyvora\nX-GNOME-Autostart-enabled=false\n", LoginStatus::notRegistered},
      {"[Desktop Entry]\nType=Application\n", LoginStatus::notRegistered},
      {"not an entry", LoginStatus::notRegistered},
      {"", LoginStatus::notRegistered},
  };
  for (const auto& [text, status] : cases) {
    writeFile(entry(), text);
    EXPECT_EQ(service.status(), status) << text;
  }
  EXPECT_EQ(service.registerProgram(), std::nullopt);
  EXPECT_EQ(service.status(), LoginStatus::enabled) << "registering replaces it";
}

TEST_F(LoginServiceTest, SpecialCharactersOfAPathAreQuoted) {
  LoginService special("/a b/$c`d\"e\\f%g/keyvora");
  EXPECT_EQ(special.registerProgram(), std::nullopt);
  // Escaped for the command line, and again for the file.
  EXPECT_NE(readFile(entry()).find(R"(Exec="/a b/\\$c\\`d\\"e\\\\f%%g/keyvora")"), std::string::npos)
      << readFile(entry());
}

TEST_F(LoginServiceTest, FailuresSayWhereAndWhy) {
  writeFile(scratch.path() / ".config", "a file where a directory should be");
  const auto directory = (scratch.path() / ".config" / "autostart").string();
  EXPECT_EQ(service.registerProgram(), directory + " cannot be created: Not a directory");
  fs::remove(scratch.path() / ".config");

  fs::create_directories(entry() / "a directory where the entry should be");
  EXPECT_EQ(service.status(), LoginStatus::notRegistered);
  const auto refused = service.registerProgram();
  ASSERT_TRUE(refused);
  EXPECT_EQ(refused->find(entry().string() + " cannot be written: "), 0u) << *refused;
  EXPECT_EQ(service.unregisterProgram(), entry().string() + " cannot be removed: Directory not empty");
}

TEST_F(LoginServiceTest, ARelativeConfigurationDirectoryDoesNotCount) {
  const Variable none("XDG_CONFIG_HOME", "relative/path");
  EXPECT_EQ(service.registerProgram(), std::nullopt);
  EXPECT_TRUE(fs::exists(entry())) << "falls back to the home directory";
}

}  // namespace
}  // namespace keyvora::x11
