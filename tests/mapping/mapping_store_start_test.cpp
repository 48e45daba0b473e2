#include "tests/mapping/mapping_store_fixture.h"

/// What the store does on first access.
namespace keyvora {
namespace {

using simulated::Call;
using testing::ElementsAre;
using testing::IsEmpty;

struct MappingStoreStartTest : MappingStoreTest {
  void expectFallback() {
    EXPECT_EQ(store().mapping().version, 1);
    EXPECT_EQ(store().mapping().notes, std::nullopt);
    EXPECT_EQ(store().mapping().timeoutMilliseconds, 1500);
    EXPECT_THAT(store().mapping().tabs, IsEmpty());
    EXPECT_THAT(store().mapping().sequences, IsEmpty());
  }

  void expectSilence() {
    EXPECT_THAT(host.trace.entries(), IsEmpty());
    EXPECT_EQ(store().lastError(), std::nullopt);
    EXPECT_FALSE(store().onReload);
  }
};

TEST_F(MappingStoreStartTest, TheFirstStartCopiesTheDefaultDocumentAndLoadsIt) {
  host.files.write(defaultDocument, document("AB"));
  EXPECT_EQ(store().url(), path);
  EXPECT_EQ(keys(), "AB");
  EXPECT_EQ(store().mapping().timeoutMilliseconds, 250);
  EXPECT_TRUE(host.files.isDirectory(directory));
  EXPECT_EQ(host.files.content(path), document("AB"));
  EXPECT_EQ(host.files.watchCount(), 1u);
  expectSilence();
}

TEST_F(MappingStoreStartTest, AnExistingFileIsLoadedAndTheBundleIsNotConsulted) {
  host.files.write(path, document("X"));
  EXPECT_EQ(keys(), "X");
  EXPECT_EQ(host.failures.count(Call::openBundle), 0u);
  EXPECT_EQ(host.failures.count(Call::resource), 0u);
  expectSilence();
}

struct MappingStoreInvalidFileTest : MappingStoreStartTest, testing::WithParamInterface<const char*> {};

TEST_P(MappingStoreInvalidFileTest, IsNeverReplacedByTheDefaultDocument) {
  host.files.write(path, GetParam());
  expectFallback();
  EXPECT_EQ(host.files.content(path), GetParam());
  EXPECT_EQ(host.failures.count(Call::copy), 0u);
  EXPECT_EQ(host.files.watchCount(), 1u) << "and its correction will be noticed";
  expectSilence();
}

INSTANTIATE_TEST_SUITE_P(Contents, MappingStoreInvalidFileTest,
                         testing::Values("", "{", "not JSON at all", "[]", R"({"version": 1})"));

TEST_F(MappingStoreStartTest, AFileThatCannotBeReadGivesTheFallbackSilently) {
  host.files.write(path, document("X"));
  host.files.lock(path);
  expectFallback();
  EXPECT_EQ(host.files.watchCount(), 0u);
  expectSilence();
}

TEST_F(MappingStoreStartTest, ABundleWithoutTheResourceGivesTheFallbackSilently) {
  host.bundles.others.at(bundle).resources.clear();
  expectFallback();
  EXPECT_FALSE(host.files.content(path));
  EXPECT_EQ(host.files.watchCount(), 0u);
  expectSilence();
}

/// A call that fails during the first start, and what is left of it.
struct Row {
  Call call;
  bool loaded;
  bool watched;
};

struct MappingStoreStartFailureTest : MappingStoreStartTest, testing::WithParamInterface<Row> {};

TEST_P(MappingStoreStartFailureTest, IsIgnoredSilently) {
  host.files.write(defaultDocument, document("A"));
  host.failures.always(GetParam().call);
  if (GetParam().loaded) {
    EXPECT_EQ(keys(), "A");
  } else {
    expectFallback();
  }
  EXPECT_EQ(host.files.watchCount(), GetParam().watched ? 1u : 0u);
  expectSilence();
}

INSTANTIATE_TEST_SUITE_P(Calls, MappingStoreStartFailureTest,
                         testing::Values(Row{Call::createDirectories, false, false},
                                         Row{Call::copy, false, false}, Row{Call::resource, false, false},
                                         Row{Call::read, false, true}, Row{Call::watch, true, false}),
                         [](const auto& row) { return std::string(simulated::traits(row.param.call).name); });

TEST_F(MappingStoreStartTest, HappensOnceAndInOrder) {
  store();
  store();
  EXPECT_EQ(host.failures.count(Call::applicationSupportDirectory), 1u);
  EXPECT_EQ(host.failures.count(Call::createDirectories), 1u);
  EXPECT_EQ(host.failures.count(Call::exists), 1u);
  EXPECT_EQ(host.failures.count(Call::copy), 1u);
  EXPECT_EQ(host.failures.count(Call::read), 1u);
  EXPECT_EQ(host.failures.count(Call::watch), 1u);
}

TEST_F(MappingStoreStartTest, AFailureOfTheFirstLoadShowsAtTheFirstReload) {
  host.files.write(path, R"({"version": 1, "tabs": {}, "sequences": [)"
                         R"({"keys": "A", "name": "n", "action": {"kind": "teleport"}}]})");
  expectFallback();
  expectSilence();
  store().reload();
  EXPECT_EQ(store().lastError(), "unknown action kind teleport");
  EXPECT_THAT(logged(), ElementsAre("mappings.json not loaded, keeping the last good one: "
                                    "unknown action kind teleport"));
  expectFallback();
}

struct MappingStoreDeathTest : MappingStoreTest {};

TEST_F(MappingStoreDeathTest, StopsWithoutAWordWhenTheUserHasNoApplicationSupportDirectory) {
  host.files.applicationSupport = std::nullopt;
  EXPECT_DEATH(MappingStore::shared(), "^$");
}

TEST_F(MappingStoreDeathTest, StopsWhenAMissingFileMeetsAMissingBundle) {
  host.bundles.others.clear();
  EXPECT_DEATH(MappingStore::shared(), "^Fatal error: unable to find bundle named keyvora_keyvora\n$");
}

TEST_F(MappingStoreTest, AMissingBundleDoesNotMatterToOneWhoHasAFile) {
  host.bundles.others.clear();
  host.files.write(path, document("A"));
  EXPECT_EQ(keys(), "A");
}

}  // namespace
}  // namespace keyvora
