#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "hosts/x11/diagnosis/diagnosis.h"

#include <X11/XKBlib.h>
#include <X11/extensions/XInput2.h>
#include <dlfcn.h>
#include <unistd.h>

#include <functional>
#include <utility>

#include "hosts/x11/applications/desktop_windows.h"
#include "hosts/x11/diagnosis/facts.h"
#include "hosts/x11/diagnosis/option_grabs.h"
#include "hosts/x11/loop/main_loop.h"
#include "hosts/x11/tap/key_devices.h"
#include "hosts/x11/tap/tap_claim.h"
#include "tests/x11/keyboard/client_window.h"
#include "tests/x11/keyboard/typist.h"
#include "tests/x11/private_session.h"

namespace {

/// Run once each, just before the next grab of that kind is given up.
std::function<void()> beforeKeyIsUngrabbed;
std::function<void()> beforeDeviceKeyIsUngrabbed;

void runOnce(std::function<void()>& block, Display* display) {
  if (!block) return;
  XSync(display, False);
  std::exchange(block, nullptr)();
}

template <class Function>
Function* original(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

// In place of the libraries'.

extern "C" int XUngrabKey(Display* display, int key, unsigned modifiers, Window window) {
  runOnce(beforeKeyIsUngrabbed, display);
  return original<decltype(XUngrabKey)>("XUngrabKey")(display, key, modifiers, window);
}

// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name): the header writes them otherwise
extern "C" Status XIUngrabKeycode(Display* display, int device, int key, Window window, int count,
                                  XIGrabModifiers* modifiers) {
  runOnce(beforeDeviceKeyIsUngrabbed, display);
  return original<decltype(XIUngrabKeycode)>("XIUngrabKeycode")(display, device, key, window, count,
                                                                modifiers);
}

namespace keyvora::x11 {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;
using testing::StartsWith;

constexpr KeyCode leftAlt = 64;
constexpr auto excel = "com.microsoft.Excel";

class DiagnosisTest : public testing::Test {
 protected:
  DiagnosisTest() {
    fs::create_directories(document.parent_path());
    writeFile(document, "{}");
  }

  std::vector<std::string> names() {
    std::vector<std::string> all;
    for (const auto& finding : diagnosis.findings(document)) {
      EXPECT_FALSE(finding.sentence.empty());
      EXPECT_FALSE(finding.remedy.empty());
      all.push_back(finding.name);
    }
    return all;
  }

  std::string fact(const std::string& name) {
    for (const auto& each : diagnosis.facts(excel)) {
      if (each.name == name) return each.value;
    }
    return "no such fact";
  }

  PrivateSession session;
  const fs::path document = session.home() / "keyvora" / "mappings.json";
  std::unique_ptr<Connection> connection = Connection::open("");
  Display* display = connection->get();
  TargetWindow target;
  Applications applications{"", target};
  MainLoop loop;
  Diagnosis diagnosis{"", applications, loop};
};

TEST_F(DiagnosisTest, OnASoundDesktopThereIsNothingToFind) {
  EXPECT_THAT(names(), IsEmpty());
}

TEST_F(DiagnosisTest, WithoutAWindowManagerThatTellsTheFrontWindowNothingStarts) {
  XDeleteProperty(display, connection->root(), listProperty(display));
  XSync(display, False);
  EXPECT_THAT(names(), ElementsAre("no window manager")) << "it runs, and does not tell";
  const Variable wayland("WAYLAND_DISPLAY", "wayland-0");
  const auto found = diagnosis.findings(document);
  ASSERT_EQ(found.size(), 1U);
  EXPECT_THAT(found[0].sentence, StartsWith("This is a Wayland session whose compositor does not tell"));
  EXPECT_TRUE(found[0].stopsSequences);
}

TEST_F(DiagnosisTest, AWindowManagerThatEndedTellsNothing) {
  EXPECT_EQ(fact("window manager"), "Openbox");
  auto& display_ = const_cast<PrivateDisplay&>(session.display());
  display_.endWindowManager();
  EXPECT_THAT(names(), ElementsAre("no window manager"));
  EXPECT_EQ(fact("window manager"), "none");
}

TEST_F(DiagnosisTest, ADesktopWithAWindowManagerIsUpAtOnce) {
  int times = 0;
  diagnosis.whenDesktopIsUp([&] { ++times; });
  EXPECT_EQ(times, 1);
}

TEST_F(DiagnosisTest, AWindowManagerThatStartsLaterIsWaitedForAndNotSaidToBeMissing) {
  auto& desktop = const_cast<PrivateDisplay&>(session.display());
  desktop.endWindowManager();
  Diagnosis waiting("", applications, loop, 10 * patience);
  int times = 0;
  std::vector<std::string> found{"not asked"};
  waiting.whenDesktopIsUp([&] {
    ++times;
    found = names();
  });
  runUntil([&] { return times > 0; }, std::chrono::milliseconds(300));
  EXPECT_EQ(times, 0);
  desktop.startWindowManager();
  EXPECT_TRUE(runUntil([&] { return times > 0; }));
  EXPECT_THAT(found, IsEmpty());
  XStoreName(display, connection->root(), "a property of the root window");
  XSync(display, False);
  runUntil([&] { return times > 1; }, std::chrono::milliseconds(300));
  EXPECT_EQ(times, 1);
}

TEST_F(DiagnosisTest, ADesktopWithoutAWindowManagerIsNotWaitedForForEver) {
  const_cast<PrivateDisplay&>(session.display()).endWindowManager();
  Diagnosis impatient("", applications, loop, platform::Seconds(0.2));
  int times = 0;
  impatient.whenDesktopIsUp([&] { ++times; });
  EXPECT_EQ(times, 0);
  EXPECT_TRUE(runUntil([&] { return times > 0; }));
  EXPECT_THAT(names(), ElementsAre("no window manager"));
}

TEST_F(DiagnosisTest, OnlyTheLatestBlockIsRun) {
  const_cast<PrivateDisplay&>(session.display()).endWindowManager();
  Diagnosis impatient("", applications, loop, platform::Seconds(0.2));
  int earlier = 0;
  int later = 0;
  impatient.whenDesktopIsUp([&] { ++earlier; });
  impatient.whenDesktopIsUp([&] { ++later; });
  EXPECT_TRUE(runUntil([&] { return later > 0; }));
  EXPECT_EQ(earlier, 0);
}

TEST_F(DiagnosisTest, UnderWaylandItSaysWhatWorksAndHowToStartTheSpreadsheet) {
  const Variable wayland("WAYLAND_DISPLAY", "wayland-0");
  const auto found = diagnosis.findings(document);
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].name, "Wayland");
  EXPECT_THAT(found[0].remedy, StartsWith("Start the spreadsheet with \"GDK_BACKEND=x11 gnumeric\""));
  EXPECT_FALSE(found[0].stopsSequences);
}

TEST_F(DiagnosisTest, StickyKeysAreNamed) {
  XkbChangeEnabledControls(display, XkbUseCoreKbd, XkbStickyKeysMask, XkbStickyKeysMask);
  XSync(display, False);
  EXPECT_THAT(names(), ElementsAre("Sticky Keys"));
}

TEST_F(DiagnosisTest, AProgramThatHoldsOptionOnTheRootWindowIsNamed) {
  XGrabKey(display, leftAlt, LockMask, connection->root(), False, GrabModeAsync, GrabModeAsync);
  XSync(display, False);
  EXPECT_THAT(names(), ElementsAre("another program holds the Option key"));
  XUngrabKey(display, leftAlt, LockMask, connection->root());
  XSync(display, False);
  EXPECT_THAT(names(), IsEmpty());

  XIEventMask nothing{.deviceid = XIAllMasterDevices, .mask_len = 0, .mask = nullptr};
  XIGrabModifiers alone{.modifiers = 0, .status = 0};
  ASSERT_TRUE(xinputOpcode(display));
  ASSERT_EQ(XIGrabKeycode(display, findKeyDevices(display)->master, leftAlt, connection->root(),
                          XIGrabModeAsync, XIGrabModeAsync, False, &nothing, 1, &alone),
            0);
  EXPECT_THAT(names(), ElementsAre("another program holds the Option key"));
}

TEST_F(DiagnosisTest, AProgramThatHoldsOptionOnTheTargetIsNamed) {
  const ClientWindow window(session.display().name(), {});
  ASSERT_TRUE(window.awaitFocus());
  XGrabKey(display, leftAlt, 0, window.window(), False, GrabModeAsync, GrabModeAsync);
  XSync(display, False);
  EXPECT_THAT(names(), ElementsAre("another program holds the Option key"));
}

TEST_F(DiagnosisTest, WhatOurTapHoldsAndOtherShortcutsAreNoFinding) {
  const ClientWindow window(session.display().name(), {});
  ASSERT_TRUE(window.awaitFocus());
  XGrabKey(display, leftAlt, ControlMask, connection->root(), False, GrabModeAsync, GrabModeAsync);
  XGrabKey(display, 23, Mod1Mask, connection->root(), False, GrabModeAsync, GrabModeAsync);
  ASSERT_TRUE(xinputOpcode(display));
  ASSERT_TRUE(claimTap(*connection));
  XIEventMask nothing{.deviceid = XIAllMasterDevices, .mask_len = 0, .mask = nullptr};
  XIGrabModifiers alone{.modifiers = int(XIAnyModifier), .status = 0};
  const auto grab = [&] {
    return XIGrabKeycode(display, findKeyDevices(display)->master, leftAlt, window.window(), XIGrabModeSync,
                         XIGrabModeAsync, False, &nothing, 1, &alone);
  };
  ASSERT_EQ(grab(), 0);
  XSync(display, False);
  EXPECT_THAT(names(), IsEmpty());
  disclaimTap(*connection);
  XSync(display, False);
  EXPECT_THAT(names(), ElementsAre("another program holds the Option key")) << "it is no tap of ours";
}

TEST_F(DiagnosisTest, LooksWithoutLeavingAGrabBehind) {
  const auto looking = Connection::open("");
  EXPECT_FALSE(anotherHoldsOption(*looking));
  ErrorTrap trap(display);
  XGrabKey(display, leftAlt, 0, connection->root(), False, GrabModeAsync, GrabModeAsync);
  EXPECT_EQ(trap.code(), 0);
  XIEventMask nothing{.deviceid = XIAllMasterDevices, .mask_len = 0, .mask = nullptr};
  XIGrabModifiers alone{.modifiers = 0, .status = 0};
  ASSERT_TRUE(xinputOpcode(display));
  EXPECT_EQ(XIGrabKeycode(display, findKeyDevices(display)->master, leftAlt, connection->root(),
                          XIGrabModeAsync, XIGrabModeAsync, False, &nothing, 1, &alone),
            0);
}

TEST_F(DiagnosisTest, APressWhileItLooksReachesItsWindow) {
  const ClientWindow window(session.display().name(), {});
  ASSERT_TRUE(window.awaitFocus());
  Typist user(session.display().name(), Typist::Device::hardware);
  const auto looking = Connection::open("");
  for (auto* moment : {&beforeKeyIsUngrabbed, &beforeDeviceKeyIsUngrabbed}) {
    const auto before = window.pressed().size();
    *moment = [&user] {
      user.tap({platform::key_code::leftOption});
      user.sync();
    };
    EXPECT_FALSE(anotherHoldsOption(*looking));
    EXPECT_FALSE(*moment) << "it has looked";
    EXPECT_TRUE(runUntil([&] { return window.pressed().size() == before + 1; }));
  }
}

TEST_F(DiagnosisTest, ADocumentThatOthersMayChangeIsNamed) {
  fs::permissions(document, fs::perms::others_write, fs::perm_options::add);
  EXPECT_THAT(names(), ElementsAre("mappings.json is writable by all"));
  fs::permissions(document, fs::perms::others_write, fs::perm_options::remove);
  EXPECT_THAT(names(), IsEmpty());
  fs::permissions(document.parent_path(), fs::perms::others_write, fs::perm_options::add);
  EXPECT_THAT(names(), ElementsAre("the folder of mappings.json is writable by all"));
  fs::remove(document);
  EXPECT_THAT(names(), ElementsAre("the folder of mappings.json is writable by all"));
}

TEST_F(DiagnosisTest, ADocumentOfAnotherUserIsNamed) {
  constexpr uid_t other = 54321;
  if (geteuid() != 0) GTEST_SKIP() << "only the administrator can give a file away";
  ASSERT_EQ(chown(document.c_str(), other, gid_t(-1)), 0);
  EXPECT_THAT(names(), ElementsAre("mappings.json is another user's"));
  ASSERT_EQ(chown(document.c_str(), 0, gid_t(-1)), 0);
  ASSERT_EQ(chown(document.parent_path().c_str(), other, gid_t(-1)), 0);
  EXPECT_THAT(names(), ElementsAre("the folder of mappings.json is another user's"));
}

TEST_F(DiagnosisTest, TellsOfTheDisplayAndItsKeyboard) {
  EXPECT_THAT(fact("display"), StartsWith(session.display().name() + ", "));
  EXPECT_EQ(fact("keyboard layout"), "us");
  EXPECT_THAT(fact("Option keys"), StartsWith("Alt_L (64)"));
  EXPECT_EQ(fact("accessibility bus"), "there");
  EXPECT_EQ(fact("keyvora"), "is not running");
  session.display().setLayout("de", "nodeadkeys");
  EXPECT_EQ(fact("keyboard layout"), "de, variant nodeadkeys");
  EXPECT_EQ(Child({"setxkbmap", "-layout", "us", "-variant", "", "-option", "compose:ralt"}, {}).wait(), 0);
  EXPECT_EQ(fact("keyboard layout"), "us, options compose:ralt");
  EXPECT_THAT(fact("Option keys"), testing::Not(testing::HasSubstr("Alt_R")));
}

TEST_F(DiagnosisTest, TellsOfOsascriptAndOfTheTarget) {
  const Variable path("PATH", (session.home() / "bin").string());
  EXPECT_THAT(fact("osascript"), StartsWith("none: "));
  writeProgram(session.home() / "bin" / "osascript", "true");
  EXPECT_EQ(fact("osascript"), (session.home() / "bin" / "osascript").string());
  EXPECT_EQ(fact("spreadsheet"), "none is running");

  const ClientWindow window(session.display().name(), {.process = getpid()});
  ASSERT_TRUE(window.awaitFocus());
  ASSERT_TRUE(runUntil([&] { return !applications.running(excel).empty(); }));
  EXPECT_THAT(fact("spreadsheet"), testing::EndsWith(", process " + std::to_string(getpid()) + ", language " +
                                                     languageOf(getpid())));
  EXPECT_NE(languageOf(getpid()), "");
}

TEST_F(DiagnosisTest, TheLanguageOfAProcessIsWhatItsEnvironmentSays) {
  const auto language = [](const std::vector<std::string>& environment) {
    std::vector<std::string> all{"LC_ALL=", "LC_MESSAGES=", "LANG=", "LANGUAGE="};
    all.insert(all.end(), environment.begin(), environment.end());
    const Child child({"sleep", "60"}, all);
    return languageOf(child.pid());
  };
  EXPECT_EQ(language({}), "C");
  EXPECT_EQ(language({"LANG=de_DE.UTF-8"}), "de_DE.UTF-8");
  EXPECT_EQ(language({"LANG=de_DE.UTF-8", "LC_ALL=fr_FR.UTF-8"}), "fr_FR.UTF-8");
  EXPECT_EQ(language({"LANG=de_DE.UTF-8", "LANGUAGE=nl:de"}), "nl:de");
  EXPECT_EQ(language({"LANG=C.UTF-8", "LANGUAGE=nl"}), "C.UTF-8");
  EXPECT_EQ(languageOf(0), "");
}

TEST(Diagnosis, WithoutADisplayThatIsWhatIsFound) {
  TargetWindow target;
  Applications applications(":4711", target);
  MainLoop loop;
  Diagnosis diagnosis(":4711", applications, loop);
  const auto found = diagnosis.findings("/nowhere/mappings.json");
  EXPECT_THAT(found, Contains(AllOf(Field(&platform::Finding::name, "no display to work on"),
                                    Field(&platform::Finding::stopsSequences, true))));
  int times = 0;
  diagnosis.whenDesktopIsUp([&] { ++times; });
  EXPECT_EQ(times, 1);
  EXPECT_FALSE(diagnosis.facts(excel).empty());
}

}  // namespace
}  // namespace keyvora::x11
