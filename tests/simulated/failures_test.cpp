#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

#include "hosts/simulated/host.h"

/// Every call of the door works, and can be made to fail.
namespace keyvora::simulated {
namespace {

using platform::Seconds;

/// Ignores all calls.
struct SilentDelegate : platform::UpdaterDelegate {
  int answers = 0;
  void didFindValidUpdate(const platform::UpdateItem&) override { ++answers; }
  void didNotFindUpdate(const std::string&) override { ++answers; }
  void didAbort(const std::string&) override { ++answers; }
  [[nodiscard]] bool supportsGentleScheduledUpdateReminders() const override { return true; }
  [[nodiscard]] bool shouldHandleShowingScheduledUpdate(const platform::UpdateItem&, bool) const override {
    return true;
  }
  void willHandleShowingUpdate(bool, const platform::UpdateItem&) override {}
  void willFinishUpdateSession() override {}
};

/// A host in which every call succeeds, and objects to call through.
struct Fixture {
  Host host;
  const platform::Platform& door = host.platform();
  std::unique_ptr<platform::StatusItem> item = door.statusBar.createItem();
  std::unique_ptr<platform::SerialQueue> queue = door.queues.createSerial("queue");
  std::unique_ptr<platform::EventTap> tap =
      door.keyboard.createTap(~0ull, [](const auto&) { return platform::Verdict::pass; });
  std::unique_ptr<platform::SyntheticEvent> event = door.keyboard.createEvent(nullptr, 4, true);
  SilentDelegate delegate;
  std::unique_ptr<platform::UpdaterController> updater = door.updates.createController(true, delegate);
  TreeElementRef element = host.accessibility.element("File");
  const std::filesystem::path file = "/there/file";

  Fixture() {
    host.files.write(file, "text");
    host.applications.start("com.microsoft.Excel", 77);
    host.applications.front = "com.microsoft.Excel";
    host.updates.answer = NoUpdate{};
    host.loginService.state = platform::LoginStatus::enabled;
    host.diagnosis.found = {{"no window manager", "Nothing starts.", "Start one.", true}};
    host.diagnosis.known = {{"window manager", "none"}};
  }

  /// Whether `deed` added an entry of this type to the trace.
  template <class Entry, class Deed>
  bool leaves(Deed deed) {
    const auto before = host.trace.of<Entry>().size();
    deed();
    return host.trace.of<Entry>().size() == before + 1;
  }
};

/// Makes the call and returns whether it succeeded.
using Attempt = std::function<bool(Fixture&)>;

const std::map<Call, Attempt>& attempts() {
  static const std::map<Call, Attempt> all{
      {Call::isTrusted, [](Fixture& f) { return f.door.accessibility.isTrusted(); }},
      {Call::isTrustedPrompting, [](Fixture& f) { return f.door.accessibility.isTrustedPrompting(); }},
      {Call::elementAttribute, [](Fixture& f) { return f.element->attribute("AXTitle").error == 0; }},
      {Call::elementPerform,
       [](Fixture& f) { return f.leaves<trace::Performed>([&] { f.element->perform("AXPress"); }); }},
      {Call::setActivationPolicy,
       [](Fixture& f) {
         return f.leaves<trace::PolicySet>(
             [&] { f.door.application.setActivationPolicy(platform::ActivationPolicy::regular); });
       }},
      {Call::activate,
       [](Fixture& f) { return f.leaves<trace::Activated>([&] { f.door.application.activate(); }); }},
      {Call::print,
       [](Fixture& f) { return f.leaves<trace::Printed>([&] { f.door.process.print("line"); }); }},
      {Call::atExit,
       [](Fixture& f) {
         bool ran = false;
         f.door.process.atExit([&ran] { ran = true; });
         f.door.process.exit(0);
         return ran;
       }},
      {Call::running,
       [](Fixture& f) { return f.door.applications.running("com.microsoft.Excel").size() == 1; }},
      {Call::frontmost,
       [](Fixture& f) { return f.door.applications.frontmostBundleIdentifier().has_value(); }},
      {Call::openFile,
       [](Fixture& f) { return f.leaves<trace::FileOpened>([&] { f.door.workspace.openFile("/file"); }); }},
      {Call::openAddress,
       [](Fixture& f) {
         return f.leaves<trace::AddressOpened>([&] { f.door.workspace.openAddress("x:y"); });
       }},
      {Call::resourceDirectory,
       [](Fixture& f) { return f.door.bundles.main().resourceDirectory().has_value(); }},
      {Call::resource,
       [](Fixture& f) {
         return f.door.bundles.open(f.host.bundles.others.begin()->first)
             ->resource("mappings", "json")
             .has_value();
       }},
      {Call::information,
       [](Fixture& f) { return f.door.bundles.main().information("CFBundleVersion").has_value(); }},
      {Call::identifier, [](Fixture& f) { return f.door.bundles.main().identifier().has_value(); }},
      {Call::openBundle,
       [](Fixture& f) { return f.door.bundles.open(f.host.bundles.others.begin()->first) != nullptr; }},
      {Call::localTime, [](Fixture& f) { return !f.door.clock.localTime().empty(); }},
      {Call::writeConsole,
       [](Fixture& f) { return f.leaves<trace::Console>([&] { f.door.console.write("record"); }); }},
      {Call::findings, [](Fixture& f) { return f.door.diagnosis.findings(f.file).size() == 1; }},
      {Call::facts, [](Fixture& f) { return f.door.diagnosis.facts("com.microsoft.Excel").size() == 1; }},
      {Call::applicationSupportDirectory,
       [](Fixture& f) { return f.door.fileSystem.applicationSupportDirectory().has_value(); }},
      {Call::libraryDirectory, [](Fixture& f) { return f.door.fileSystem.libraryDirectory().has_value(); }},
      {Call::createDirectories, [](Fixture& f) { return f.door.fileSystem.createDirectories("/a/b"); }},
      {Call::exists, [](Fixture& f) { return f.door.fileSystem.exists(f.file); }},
      {Call::copy,
       [](Fixture& f) {
         f.host.files.remove("/there/copy");
         return f.door.fileSystem.copy(f.file, "/there/copy");
       }},
      {Call::read, [](Fixture& f) { return !f.door.fileSystem.read(f.file).error; }},
      {Call::append, [](Fixture& f) { return f.door.fileSystem.append(f.file, "more"); }},
      {Call::replace, [](Fixture& f) { return f.door.fileSystem.replace(f.file, "other"); }},
      {Call::watch, [](Fixture& f) { return f.door.fileSystem.watch(f.file, [] {}) != nullptr; }},
      {Call::createTap,
       [](Fixture& f) {
         return f.door.keyboard.createTap(0, [](const auto&) { return platform::Verdict::pass; }) != nullptr;
       }},
      {Call::enableTap, [](Fixture& f) { return f.leaves<trace::TapEnabled>([&] { f.tap->enable(); }); }},
      {Call::createSource, [](Fixture& f) { return f.door.keyboard.createSource() != nullptr; }},
      {Call::createEvent,
       [](Fixture& f) { return f.door.keyboard.createEvent(nullptr, 4, true) != nullptr; }},
      {Call::postToProcess, [](Fixture& f) { return f.leaves<trace::Posted>([&] { f.event->postTo(77); }); }},
      {Call::postToHardware,
       [](Fixture& f) { return f.leaves<trace::Posted>([&] { f.event->postToHardware(); }); }},
      {Call::loginStatus,
       [](Fixture& f) { return f.door.loginService.status() == platform::LoginStatus::enabled; }},
      {Call::registerProgram, [](Fixture& f) { return !f.door.loginService.registerProgram(); }},
      {Call::unregisterProgram, [](Fixture& f) { return !f.door.loginService.unregisterProgram(); }},
      {Call::schedule,
       [](Fixture& f) {
         bool ran = false;
         const auto timer = f.door.mainLoop.schedule(Seconds(1), false, platform::TimerMode::defaultMode,
                                                     [&ran] { ran = true; });
         f.host.advance(2);
         return ran;
       }},
      {Call::after,
       [](Fixture& f) {
         bool ran = false;
         f.door.mainLoop.after(Seconds(1), [&ran] { ran = true; });
         f.host.advance(2);
         return ran;
       }},
      {Call::async,
       [](Fixture& f) {
         bool ran = false;
         f.queue->async([&ran] { ran = true; });
         return ran;
       }},
      {Call::drain, [](Fixture& f) { return f.queue->drain(std::chrono::seconds(1)); }},
      {Call::walk,
       [](Fixture& f) {
         bool ran = false;
         f.door.queues.walk({[&ran] {
           ran = true;
           return std::chrono::microseconds(0);
         }});
         f.host.advance(0);
         return ran;
       }},
      {Call::runScript, [](Fixture& f) { return f.door.scripts.run("beep").succeeded; }},
      {Call::createStatusItem, [](Fixture& f) { return f.door.statusBar.createItem()->hasButton(); }},
      {Call::setTitle,
       [](Fixture& f) { return f.leaves<trace::TitleShown>([&] { f.item->setTitle("title"); }); }},
      {Call::setMenu, [](Fixture& f) { return f.leaves<trace::MenuShown>([&] { f.item->setMenu({}); }); }},
      {Call::startUpdater,
       [](Fixture& f) { return f.leaves<trace::UpdaterCalled>([&] { f.updater->startUpdater(); }); }},
      {Call::checkForUpdates,
       [](Fixture& f) { return f.leaves<trace::UpdaterCalled>([&] { f.updater->checkForUpdates(); }); }},
      {Call::checkForUpdateInformation,
       [](Fixture& f) {
         f.delegate.answers = 0;
         f.updater->checkForUpdateInformation();
         f.host.advance(0);
         return f.delegate.answers == 2;
       }},
  };
  return all;
}

struct SimulatedFailuresTest : testing::TestWithParam<CallTraits> {
  Fixture fixture;
  Call call = GetParam().call;

  bool works() { return attempts().at(call)(fixture); }
};

TEST_P(SimulatedFailuresTest, WorksUnlessItIsMadeToFail) {
  const auto before = fixture.host.failures.count(call);
  EXPECT_TRUE(works());
  EXPECT_EQ(fixture.host.failures.count(call), before + 1);
}

TEST_P(SimulatedFailuresTest, FailsUntilTheFailuresAreCleared) {
  fixture.host.failures.always(call);
  EXPECT_FALSE(works());
  EXPECT_FALSE(works());
  fixture.host.failures.clear();
  EXPECT_TRUE(works());
}

TEST_P(SimulatedFailuresTest, FailsAtTheTimesThatWereChosenOnly) {
  fixture.host.failures.nth(call, 2);
  fixture.host.failures.nth(call, 4);
  EXPECT_TRUE(works());
  EXPECT_FALSE(works());
  EXPECT_TRUE(works());
  EXPECT_FALSE(works());
  EXPECT_TRUE(works());
}

INSTANTIATE_TEST_SUITE_P(Calls, SimulatedFailuresTest, testing::ValuesIn(allCalls),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(SimulatedFailureKindsTest, FailuresSayWhatTheTableOfCallsPromises) {
  Fixture f;
  for (const auto& each : allCalls) f.host.failures.always(each.call);
  EXPECT_EQ(f.element->attribute("AXTitle").error, -25204);
  EXPECT_EQ(f.element->perform("AXPress"), -25204);
  EXPECT_EQ(f.door.fileSystem.read("/there/file").error,
            "The file “file” could not be opened: Input/output error.");
  EXPECT_EQ(f.door.loginService.status(), platform::LoginStatus::notFound);
  EXPECT_EQ(f.door.loginService.registerProgram(), "Operation not permitted");
  EXPECT_EQ(f.door.scripts.run("beep").message, std::nullopt);
  EXPECT_NE(f.door.mainLoop.schedule(Seconds(1), false, platform::TimerMode::commonModes, [] {}), nullptr);
}

}  // namespace
}  // namespace keyvora::simulated
