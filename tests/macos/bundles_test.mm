#import "hosts/macos/bundles.h"

#include <gtest/gtest.h>

#include "tests/macos/scratch_directory.h"

namespace keyvora::macos {
namespace {

constexpr auto informationDictionary = R"(<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0"><dict>
<key>CFBundleIdentifier</key><string>org.keyvora.test</string>
<key>CFBundleShortVersionString</key><string>1.2</string>
<key>CFBundleVersion</key><integer>42</integer>
</dict></plist>
)";

TEST(Bundles, OpensADirectoryAndFindsAResourceInIt) {
  Bundles bundles;
  const ScratchDirectory scratch;
  scratch.write("keyvora_keyvora.bundle/Contents/Resources/mappings.json", "{}");
  scratch.write("keyvora_keyvora.bundle/Contents/Info.plist", informationDictionary);
  const auto bundle = bundles.open(scratch.path() / "keyvora_keyvora.bundle");
  ASSERT_TRUE(bundle);
  const auto resource = bundle->resource("mappings", "json");
  ASSERT_TRUE(resource);
  EXPECT_EQ(resource->filename(), "mappings.json");
  EXPECT_FALSE(bundle->resource("other", "json"));
  EXPECT_EQ(bundle->identifier(), "org.keyvora.test");
}

TEST(Bundles, InformationIsTextOrNothing) {
  Bundles bundles;
  const ScratchDirectory scratch;
  scratch.write("a.bundle/Contents/Info.plist", informationDictionary);
  const auto bundle = bundles.open(scratch.path() / "a.bundle");
  ASSERT_TRUE(bundle);
  EXPECT_EQ(bundle->information("CFBundleShortVersionString"), "1.2");
  EXPECT_FALSE(bundle->information("CFBundleVersion"));
  EXPECT_FALSE(bundle->information("NoSuchKey"));
}

TEST(Bundles, AMissingDirectoryIsNoBundle) {
  Bundles bundles;
  const ScratchDirectory scratch;
  EXPECT_FALSE(bundles.open(scratch.path() / "missing.bundle"));
}

TEST(Bundles, TheProgramHasABundleAndThisCodeIsInIt) {
  Bundles bundles;
  EXPECT_TRUE(std::filesystem::is_directory(bundles.main().directory()));
  EXPECT_EQ(bundles.main().directory(), bundles.containing().directory());
}

}  // namespace
}  // namespace keyvora::macos
