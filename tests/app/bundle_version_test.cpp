#include "app/bundle_version.h"

#include <gtest/gtest.h>

#include "hosts/simulated/host.h"

namespace keyvora {
namespace {

TEST(BundleVersionTest, IsReadFromTheInformationDictionary) {
  simulated::Host host;
  EXPECT_EQ(version(host.bundles.main()), "1.2");
  EXPECT_EQ(build(host.bundles.main()), "42");
}

TEST(BundleVersionTest, HasAFallbackForEachKey) {
  simulated::Host host;
  host.bundles.mainBundle.information = {};
  EXPECT_EQ(version(host.bundles.main()), "dev");
  EXPECT_EQ(build(host.bundles.main()), "0");
}

TEST(BundleVersionTest, EmptyTextIsText) {
  simulated::Host host;
  host.bundles.mainBundle.information = {{"CFBundleShortVersionString", ""}, {"CFBundleVersion", ""}};
  EXPECT_EQ(version(host.bundles.main()), "");
  EXPECT_EQ(build(host.bundles.main()), "");
}

}  // namespace
}  // namespace keyvora
