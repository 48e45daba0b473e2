#include "tests/mapping/mapping_store_fixture.h"

/// Following the file.
namespace keyvora {
namespace {

using simulated::Call;
using testing::ElementsAre;
using testing::IsEmpty;

const std::string reloaded = "mappings reloaded, 1 sequences";
const std::string missing =
    "mappings.json not loaded, keeping the last good one: "
    "The file “mappings.json” could not be opened: No such file or directory.";

struct MappingStoreWatchTest : MappingStoreTest {
  void SetUp() override {
    host.files.write(path, document("A"));
    store();
  }
};

TEST_F(MappingStoreWatchTest, ReloadsTwoTenthsOfASecondAfterAWrite) {
  host.files.write(path, document("B"));
  host.advance(0.199);
  EXPECT_EQ(keys(), "A");
  EXPECT_THAT(logged(), IsEmpty());
  host.advance(0.001);
  EXPECT_EQ(keys(), "B");
  EXPECT_THAT(logged(), ElementsAre(reloaded));
}

TEST_F(MappingStoreWatchTest, WatchesOnAfterEveryKindOfSave) {
  const auto save = [&](const char* letter, bool byRename) {
    if (byRename) {
      host.files.saveByRename(path, document(letter));
    } else {
      host.files.write(path, document(letter));
    }
    host.advance(0.2);
    EXPECT_EQ(keys(), letter);
    EXPECT_EQ(host.files.watchCount(), 1u);
  };
  save("B", false);
  save("C", true);
  save("D", true);
  save("E", false);
  EXPECT_THAT(logged(), ElementsAre(reloaded, reloaded, reloaded, reloaded));
  EXPECT_EQ(host.failures.count(Call::watch), 5u) << "each opens the path anew";
}

TEST_F(MappingStoreWatchTest, AnOpenMenuOfOursDoesNotHoldAReloadUp) {
  host.mainLoop.menuTracking = true;
  host.files.write(path, document("B"));
  host.advance(0.2);
  EXPECT_EQ(keys(), "B");
}

TEST_F(MappingStoreWatchTest, ReloadsThenCancelsThenWatchesAnew) {
  std::vector<std::string> order;
  host.failures.onCall = [&](Call call) {
    if (call != Call::read && call != Call::watch) return;
    order.push_back(std::string(simulated::traits(call).name) + " beside " +
                    std::to_string(host.files.watchCount()));
  };
  host.files.write(path, document("B"));
  host.advance(0.2);
  EXPECT_THAT(order, ElementsAre("read beside 1", "watch beside 0"));
}

TEST_F(MappingStoreTest, TheFirstLoadComesBeforeTheFirstWatch) {
  host.files.write(path, document("A"));
  std::vector<Call> order;
  host.failures.onCall = [&](Call call) {
    if (call == Call::read || call == Call::watch) order.push_back(call);
  };
  store();
  EXPECT_THAT(order, ElementsAre(Call::read, Call::watch));
}

TEST_F(MappingStoreWatchTest, FollowsAFileThatIsMovedAwayAndWrittenAnew) {
  host.files.rename(path, directory / "mappings.json~");
  host.files.write(path, document("B"));
  host.advance(0.2);
  EXPECT_EQ(keys(), "B");
  host.files.write(directory / "mappings.json~", document("X"));
  host.advance(1);
  EXPECT_THAT(logged(), ElementsAre(reloaded)) << "the file that was moved away is of no interest";
}

TEST_F(MappingStoreWatchTest, AFileThatStaysAwayEndsTheWatchButNotTheReload) {
  host.files.remove(path);
  host.advance(0.2);
  EXPECT_THAT(logged(), ElementsAre(missing));
  EXPECT_EQ(keys(), "A") << "the last good document stays in use";
  EXPECT_EQ(host.files.watchCount(), 0u);

  host.files.write(path, document("B"));
  host.files.write(path, document("C"));
  host.advance(60);
  EXPECT_THAT(logged(), ElementsAre(missing)) << "a file made later is not noticed";
  store().reload();
  EXPECT_EQ(keys(), "C");
  EXPECT_EQ(host.files.watchCount(), 0u) << "a reload on request does not watch again";
}

TEST_F(MappingStoreWatchTest, AFileThatIsBackInTimeIsFollowed) {
  host.files.remove(path);
  host.advance(0.1);
  host.files.write(path, document("B"));
  host.advance(0.1);
  EXPECT_THAT(logged(), ElementsAre(reloaded));
  EXPECT_EQ(host.files.watchCount(), 1u);
}

TEST_F(MappingStoreWatchTest, EveryNotificationGetsAReloadOfItsOwn) {
  host.files.write(path, document("B"));
  host.advance(0.05);
  host.files.write(path, document("C"));
  host.advance(0.05);
  host.files.write(path, document("D"));
  host.advance(0.1);
  EXPECT_THAT(logged(), ElementsAre(reloaded));
  EXPECT_EQ(keys(), "D") << "each reload reads what is there by then";
  host.advance(1);
  EXPECT_THAT(logged(), ElementsAre(reloaded, reloaded, reloaded));
  EXPECT_EQ(host.failures.count(Call::watch), 4u);
  EXPECT_EQ(host.files.watchCount(), 1u) << "each new watch cancelled the one before";
}

TEST_F(MappingStoreWatchTest, ABadSaveIsReportedAndTheNextGoodOneLoads) {
  host.files.write(path, R"({"version": 1, "tabs": {}, "sequences": [)"
                         R"({"keys": "A", "name": "n", "action": {"kind": ""}}]})");
  host.advance(0.2);
  EXPECT_EQ(store().lastError(), "unknown action kind ");
  host.files.write(path, document("B"));
  host.advance(0.2);
  EXPECT_EQ(store().lastError(), std::nullopt);
  EXPECT_THAT(logged(), ElementsAre("mappings.json not loaded, keeping the last good one: "
                                    "unknown action kind ",
                                    reloaded));
}

TEST_F(MappingStoreWatchTest, AWatchThatCannotBeArmedAgainEndsSilently) {
  host.failures.always(Call::watch);
  host.files.write(path, document("B"));
  host.advance(0.2);
  EXPECT_EQ(keys(), "B");
  host.failures.clear();
  host.files.write(path, document("C"));
  host.advance(60);
  EXPECT_EQ(keys(), "B") << "nothing tries again";
  EXPECT_THAT(logged(), ElementsAre(reloaded));
}

TEST_F(MappingStoreWatchTest, ACallbackMayAskForAReloadOfItsOwn) {
  int heard = 0;
  store().onReload = [&](const Mapping&) {
    if (++heard == 1) store().reload();
  };
  host.files.write(path, document("B"));
  host.advance(0.2);
  EXPECT_EQ(heard, 2);
  EXPECT_EQ(keys(), "B");
  EXPECT_THAT(logged(), ElementsAre(reloaded, reloaded));
}

TEST_F(MappingStoreTest, AStoreThatIsGoneNeitherReloadsNorWatches) {
  host.files.write(path, document("A"));
  {
    MappingStore mine;
    host.files.write(path, document("B"));
    host.advance(0);                        // the notification has arrived and its reload is scheduled
    host.files.write(path, document("C"));  // another notification is pending
  }
  host.advance(1);
  EXPECT_THAT(logged(), IsEmpty());
  EXPECT_EQ(host.files.watchCount(), 0u);
}

}  // namespace
}  // namespace keyvora
