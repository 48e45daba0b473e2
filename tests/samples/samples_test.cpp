#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <vector>

#include "hosts/posix/temporary_variable.h"
#include "hosts/x11/login_service.h"
#include "hosts/x11/updates/update_history.h"
#include "log/log.h"
#include "mapping/decode.h"
#include "mapping/mapping_store.h"
#include "tests/support/disk_platform.h"

/// What every version wrote, read by this one: a user's files outlive an upgrade, and a way back.
namespace keyvora {
namespace {

namespace fs = std::filesystem;

/// The folder of kept samples, or the one that the environment names.
fs::path samples() {
  const char* named = std::getenv("KEYVORA_SAMPLES");
  return named != nullptr ? named : KEYVORA_SAMPLES;
}

std::vector<std::string> versions() {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(samples())) {
    if (entry.is_directory()) names.push_back(entry.path().filename().string());
  }
  std::ranges::sort(names);
  return names;
}

class SamplesTest : public testing::TestWithParam<std::string> {
 protected:
  void SetUp() override {
    facts_.Parse(sample("facts.json").c_str());
    ASSERT_TRUE(facts_.IsObject());
  }

  static fs::path folder() { return samples() / GetParam(); }

  static std::string sample(const std::string& name) {
    const auto text = test::content(folder() / name);
    EXPECT_TRUE(text) << name;
    return text.value_or("");
  }

  /// The kept documents by their names, with the numbers of sequences that the version counted.
  [[nodiscard]] std::vector<std::pair<std::string, std::size_t>> documents() const {
    std::vector<std::pair<std::string, std::size_t>> found;
    for (const auto& fact : facts_["documents"].GetObject()) {
      found.emplace_back(fact.name.GetString(), fact.value.GetUint());
    }
    EXPECT_FALSE(found.empty());
    return found;
  }

  rapidjson::Document facts_;
};

TEST_P(SamplesTest, EveryDocumentHasTheSequencesItHad) {
  for (const auto& [name, count] : documents()) {
    const auto decoded = decode(sample("documents/" + name));
    ASSERT_TRUE(std::holds_alternative<Mapping>(decoded)) << name;
    EXPECT_EQ(std::get<Mapping>(decoded).sequences.size(), count) << name;
  }
}

TEST_P(SamplesTest, EveryDocumentIsLoadedFromItsPlaceAndKeptAsItIs) {
  for (const auto& [name, count] : documents()) {
    test::DiskPlatform disk;
    const platform::Scope scope(disk.platform());
    const auto file = disk.home.path() / "Library/Application Support/keyvora/mappings.json";
    const auto text = sample("documents/" + name);
    fs::create_directories(file.parent_path());
    test::write(file, text);
    EXPECT_EQ(MappingStore::shared().mapping().sequences.size(), count) << name;
    EXPECT_EQ(MappingStore::shared().lastError(), std::nullopt) << name;
    EXPECT_EQ(test::content(file), text) << name;
  }
}

TEST_P(SamplesTest, TheUpdateHistoryGoesOn) {
  const test::ScratchDirectory home;
  test::write(home / "updates", sample("updates"));
  x11::UpdateHistory history(home / "updates");
  // A check in the future counts as none, and this machine's clock may be behind that of the one that kept
  // it.
  const std::string text = sample("updates");
  const auto lastCheck = std::stoll(text.substr(text.find("LastCheck=") + std::string("LastCheck=").size()));
  EXPECT_EQ(history.sinceLastCheck().has_value(), lastCheck <= std::time(nullptr));
  EXPECT_EQ(history.skippedVersion(), facts_["skippedVersion"].GetString());
  history.recordCheck();
  ASSERT_TRUE(history.sinceLastCheck().has_value());
  EXPECT_LT(history.sinceLastCheck()->count(), 3600);
  EXPECT_EQ(history.skippedVersion(), facts_["skippedVersion"].GetString());
}

TEST_P(SamplesTest, LaunchingAtLoginStaysSwitchedOnAndCanBeSwitchedOff) {
  const test::ScratchDirectory home;
  const posix::TemporaryVariable configuration("XDG_CONFIG_HOME", home.path().string());
  fs::create_directories(home / "autostart");
  test::write(home / "autostart/org.keyvora.keyvora.desktop", sample("autostart.desktop"));
  x11::LoginService service("/usr/bin/keyvora");
  EXPECT_EQ(service.status(), platform::LoginStatus::enabled);
  EXPECT_EQ(service.unregisterProgram(), std::nullopt);
  EXPECT_EQ(service.status(), platform::LoginStatus::notRegistered);
}

TEST_P(SamplesTest, TheLogIsContinuedAndNothingOfItLost) {
  test::DiskPlatform disk;
  const platform::Scope scope(disk.platform());
  const auto before = sample("keyvora.log");
  EXPECT_EQ(std::ranges::count(before, '\n'), facts_["logLines"].GetInt());
  fs::create_directories(disk.home.path() / "Library/Logs");
  test::write(disk.home.path() / "Library/Logs/keyvora.log", before);
  Log::line("the next record");
  Log::drain(std::chrono::seconds(20));
  const auto after = test::content(disk.home.path() / "Library/Logs/keyvora.log").value_or("");
  EXPECT_EQ(after.substr(0, before.size()), before);
  EXPECT_THAT(after, testing::EndsWith(" the next record\n"));
}

INSTANTIATE_TEST_SUITE_P(Versions, SamplesTest, testing::ValuesIn(versions()), [](const auto& sample) {
  std::string name = "V" + sample.param;
  std::ranges::replace(name, '.', '_');
  return name;
});

TEST(Samples, ThereAreSome) {
  EXPECT_THAT(versions(), testing::Contains("0.1.0"));
}

}  // namespace
}  // namespace keyvora
