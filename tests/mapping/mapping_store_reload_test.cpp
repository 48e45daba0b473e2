#include "tests/mapping/mapping_store_fixture.h"

/// Reloading on request.
namespace keyvora {
namespace {

using simulated::Call;
using testing::ElementsAre;
using testing::IsEmpty;

struct MappingStoreReloadTest : MappingStoreTest {
  std::vector<Mapping> heard;

  void SetUp() override {
    host.files.write(path, document("A"));
    store().onReload = [this](const Mapping& mapping) {
      heard.push_back(mapping);
      host.trace.note("onReload");
    };
  }

  /// Changes the content without a notification.
  void edit(std::string bytes) {
    host.files.remove(path);
    host.files.write(path, std::move(bytes));
  }

  static std::string notLoaded(const std::string& error) {
    return "mappings.json not loaded, keeping the last good one: " + error;
  }
};

TEST_F(MappingStoreReloadTest, PutsTheNewDocumentInForceThenTellsThenLogs) {
  edit(document("BCD"));
  store().reload();
  EXPECT_EQ(keys(), "BCD");
  EXPECT_EQ(store().lastError(), std::nullopt);
  EXPECT_THAT(heard, ElementsAre(store().mapping()));
  EXPECT_THAT(host.trace.entries(), ElementsAre(simulated::TraceEntry(simulated::trace::Note{"onReload"}),
                                                simulated::TraceEntry(simulated::trace::Console{
                                                    "keyvora: mappings reloaded, 3 sequences"})));
}

TEST_F(MappingStoreReloadTest, TheDocumentIsInForceAndTheErrorGoneWhenTheCallbackRuns) {
  edit("{");
  store().reload();
  ASSERT_TRUE(store().lastError());
  edit(document("B"));
  std::string seen;
  store().onReload = [&](const Mapping&) { seen = keys() + (store().lastError() ? " error" : " no error"); };
  store().reload();
  EXPECT_EQ(seen, "B no error");
}

TEST_F(MappingStoreReloadTest, CountsInThePluralWhateverTheCount) {
  for (const auto& [letters, line] :
       {std::pair("", "mappings reloaded, 0 sequences"), std::pair("A", "mappings reloaded, 1 sequences"),
        std::pair("AB", "mappings reloaded, 2 sequences")}) {
    host.trace.clear();
    edit(document(letters));
    store().reload();
    EXPECT_THAT(logged(), ElementsAre(line));
  }
}

TEST_F(MappingStoreReloadTest, NobodyHasToListen) {
  store().onReload = nullptr;
  edit(document("B"));
  store().reload();
  EXPECT_EQ(keys(), "B");
  EXPECT_THAT(logged(), ElementsAre("mappings reloaded, 1 sequences"));
}

TEST_F(MappingStoreReloadTest, ADocumentThatDoesNotLoadLeavesTheLastGoodOneInForce) {
  edit(R"({"version": 1, "tabs": {}, "sequences": [)"
       R"({"keys": "A", "name": "n", "action": {"kind": "Menu"}}]})");
  store().reload();
  EXPECT_EQ(keys(), "A");
  EXPECT_EQ(store().lastError(), "unknown action kind Menu");
  EXPECT_THAT(logged(), ElementsAre(notLoaded("unknown action kind Menu")));
  EXPECT_THAT(heard, IsEmpty());
}

TEST_F(MappingStoreReloadTest, SaysWhyTheFileCannotBeRead) {
  const std::string missing = "The file “mappings.json” could not be opened: No such file or directory.";
  const std::string locked = "The file “mappings.json” could not be opened: Permission denied.";
  host.files.lock(path);
  store().reload();
  EXPECT_EQ(store().lastError(), locked);
  host.files.remove(path);
  store().reload();
  EXPECT_EQ(store().lastError(), missing);
  EXPECT_THAT(logged(), ElementsAre(notLoaded(locked), notLoaded(missing)));
  EXPECT_EQ(keys(), "A");
}

TEST_F(MappingStoreReloadTest, AnyKindOfFaultIsOneLineInTheErrorAndTheLog) {
  for (const char* content :
       {"", "{", "[]", "null", "{\"version\":\n1}", "\xff\xfe\xff", "{\"version\": 1.5}"}) {
    host.trace.clear();
    edit(content);
    store().reload();
    ASSERT_TRUE(store().lastError()) << content;
    EXPECT_THAT(*store().lastError(), testing::Not(IsEmpty())) << content;
    EXPECT_EQ(store().lastError()->find('\n'), std::string::npos) << content;
    EXPECT_THAT(logged(), ElementsAre(notLoaded(*store().lastError()))) << content;
    EXPECT_EQ(keys(), "A") << content;
  }
}

TEST_F(MappingStoreReloadTest, AGoodDocumentAfterABadOneClearsTheError) {
  edit("{");
  store().reload();
  edit(document("B"));
  store().reload();
  EXPECT_EQ(store().lastError(), std::nullopt);
  EXPECT_EQ(heard.size(), 1u);
  EXPECT_EQ(keys(), "B");
}

TEST_F(MappingStoreReloadTest, LeavesTheWatchAlone) {
  store().reload();
  store().reload();
  EXPECT_EQ(host.failures.count(Call::watch), 1u);
}

TEST_F(MappingStoreReloadTest, ACopyOfTheDocumentOutlivesAReload) {
  const auto copy = store().mapping();
  edit(document("B"));
  store().reload();
  EXPECT_EQ(copy.sequences.at(0).keys, "A");
}

}  // namespace
}  // namespace keyvora
