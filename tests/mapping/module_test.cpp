#include "mapping/module.h"

#include <gtest/gtest.h>

#include "hosts/simulated/host.h"

namespace keyvora {
namespace {

using simulated::Call;
namespace fs = std::filesystem;

/// The place of the bundle, and the bundles around it.
struct Row {
  const char* name;
  std::vector<fs::path> bundles;
  std::optional<fs::path> mainResources;
  std::optional<fs::path> containingResources;
  fs::path found;
  std::uint64_t tried;
};

struct ModuleTest : testing::TestWithParam<Row> {
  simulated::Host host;
  platform::Scope scope{host.platform()};

  void arrange(const Row& row) {
    host.bundles.mainBundle.directory = "/main";
    host.bundles.mainBundle.resourceDirectory = row.mainResources;
    host.bundles.containingBundle.directory = "/containing";
    host.bundles.containingBundle.resourceDirectory = row.containingResources;
    host.bundles.others.clear();
    for (const auto& directory : row.bundles) host.bundles.others[directory].directory = directory;
  }
};

const fs::path name = "keyvora_keyvora.bundle";

TEST_P(ModuleTest, IsTheFirstBundleThatOpens) {
  arrange(GetParam());
  EXPECT_EQ(module().directory(), GetParam().found);
  EXPECT_EQ(host.failures.count(Call::openBundle), GetParam().tried);
}

INSTANTIATE_TEST_SUITE_P(
    Places, ModuleTest,
    testing::Values(Row{"inTheMainResources",
                        {"/main/r" / name, "/containing/r" / name, "/main" / name},
                        "/main/r",
                        "/containing/r",
                        "/main/r" / name,
                        1},
                    Row{"inTheContainingResources",
                        {"/containing/r" / name, "/main" / name},
                        "/main/r",
                        "/containing/r",
                        "/containing/r" / name,
                        2},
                    Row{"besideTheProgram", {"/main" / name}, "/main/r", "/containing/r", "/main" / name, 3},
                    Row{"mainWithoutResources",
                        {"/containing/r" / name, "/main" / name},
                        std::nullopt,
                        "/containing/r",
                        "/containing/r" / name,
                        1},
                    Row{"neitherWithResources",
                        {"/main" / name, "/containing" / name},
                        std::nullopt,
                        std::nullopt,
                        "/main" / name,
                        1}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(ModuleTest, IsLookedForOnceAndOnlyWhenItIsAskedFor) {
  EXPECT_EQ(host.failures.count(Call::openBundle), 0u);
  EXPECT_EQ(&module(), &module());
  EXPECT_EQ(host.failures.count(Call::openBundle), 1u);
}

TEST_F(ModuleTest, GivesTheDefaultDocument) {
  EXPECT_EQ(module().resource("mappings", "json"),
            "/Applications/keyvora.app/Contents/Resources/keyvora_keyvora.bundle/mappings.json");
}

using ModuleDeathTest = ModuleTest;

TEST_F(ModuleDeathTest, NoBundleInAnyPlaceIsFatal) {
  arrange({"", {"/containing" / name}, "/main/r", "/containing/r", {}, 0});
  EXPECT_DEATH(module(), "^Fatal error: unable to find bundle named keyvora_keyvora\n$");
}

}  // namespace
}  // namespace keyvora
