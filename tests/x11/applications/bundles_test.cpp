#include "hosts/x11/applications/bundles.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "tests/x11/scratch.h"

namespace keyvora::x11 {
namespace {

namespace fs = std::filesystem;

constexpr auto plist = R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">
<dict>
  <!-- a comment -->
  <key>CFBundleIdentifier</key> <string>org.keyvora.keyvora</string>
  <key>CFBundleShortVersionString</key> <string>1.2 &amp; &#x2325;</string>
  <key>Number</key> <integer>7</integer>
  <key>Flag</key> <true/>
  <key>List</key> <array><string>inside</string></array>
  <key>Nested</key> <dict><key>Inner</key><string>inside</string></dict>
  <key>Empty</key> <string></string>
  <key>Sections</key> <string>a<![CDATA[<b>]]> c</string>
</dict>
</plist>
)";

class BundlesTest : public testing::Test {
 protected:
  /// The dictionary of a bundle with this Info.plist.
  std::unique_ptr<platform::Bundle> bundleWith(const std::string& text) {
    writeFile(scratch.path() / "some.bundle" / "Info.plist", text);
    return Bundles(scratch.path() / "bin" / "program").open(scratch.path() / "some.bundle");
  }

  ScratchDirectory scratch;
};

TEST_F(BundlesTest, AnInstalledProgramHasItsResourcesUnderThePrefix) {
  const auto resources = scratch.path() / "share" / "keyvora";
  writeFile(resources / "Info.plist", plist);
  Bundles bundles(scratch.path() / "bin" / "keyvora");
  EXPECT_EQ(bundles.main().directory(), scratch.path());
  EXPECT_EQ(bundles.main().resourceDirectory(), resources);
  EXPECT_EQ(bundles.main().identifier(), "org.keyvora.keyvora");
  EXPECT_EQ(&bundles.containing(), &bundles.main());
}

TEST_F(BundlesTest, AProgramThatIsNotInstalledHasItsResourcesBesideIt) {
  const auto folder = scratch.path() / "build";
  writeFile(folder / "Info.plist", plist);
  Bundles bundles(folder / "keyvora");
  EXPECT_EQ(bundles.main().directory(), folder);
  EXPECT_EQ(bundles.main().resourceDirectory(), folder);
  EXPECT_EQ(bundles.main().identifier(), "org.keyvora.keyvora");
}

TEST_F(BundlesTest, ADirectoryOpensAsABundleAndNothingElseDoes) {
  Bundles bundles(scratch.path() / "bin" / "keyvora");
  const auto directory = scratch.path() / "keyvora_keyvora.bundle";
  EXPECT_EQ(bundles.open(directory), nullptr);
  writeFile(scratch.path() / "file", "");
  EXPECT_EQ(bundles.open(scratch.path() / "file"), nullptr);
  fs::create_directory(directory);
  const auto bundle = bundles.open(directory);
  ASSERT_NE(bundle, nullptr);
  EXPECT_EQ(bundle->directory(), directory);
  EXPECT_EQ(bundle->resourceDirectory(), directory);
  EXPECT_EQ(bundle->identifier(), std::nullopt);
}

TEST_F(BundlesTest, AResourceIsFoundByNameAndExtension) {
  const auto bundle = bundleWith(plist);
  const auto directory = scratch.path() / "some.bundle";
  writeFile(directory / "mappings.json", "{}");
  writeFile(directory / "plain", "");
  EXPECT_EQ(bundle->resource("mappings", "json"), directory / "mappings.json");
  EXPECT_EQ(bundle->resource("plain", ""), directory / "plain");
  EXPECT_EQ(bundle->resource("mappings", "yaml"), std::nullopt);
  EXPECT_EQ(bundle->resource("mapping", "json"), std::nullopt);
}

/// Sets XDG_DATA_DIRS as long as it exists.
class DataDirectories {
 public:
  explicit DataDirectories(const std::string& value) { setenv("XDG_DATA_DIRS", value.c_str(), 1); }
  ~DataDirectories() { unsetenv("XDG_DATA_DIRS"); }
  DataDirectories(const DataDirectories&) = delete;
  DataDirectories& operator=(const DataDirectories&) = delete;
};

TEST_F(BundlesTest, TheDefaultDocumentIsTheOneForTheSpreadsheetThatIsInstalled) {
  const auto bundle = bundleWith(plist);
  const auto directory = scratch.path() / "some.bundle";
  for (const auto* name : {"mappings.json", "calc.json", "gnumeric.json"}) writeFile(directory / name, "{}");
  struct Case {
    std::vector<std::string> files;
    std::string document;
  };
  const std::vector<Case> cases{
      {{}, "calc.json"},
      {{"one/firefox.desktop"}, "calc.json"},
      {{"one/libreoffice-calc.desktop"}, "calc.json"},
      {{"one/gnumeric.desktop"}, "gnumeric.json"},
      {{"two/org.gnumeric.gnumeric.desktop"}, "gnumeric.json"},
      {{"two/org.gnumeric.Gnumeric.desktop"}, "gnumeric.json"},
      {{"one/gnumeric.desktop", "two/libreoffice-calc.desktop"}, "calc.json"},
      {{"one/gnumeric.desktop", "two/libreoffice24.8-calc.desktop"}, "calc.json"},
      {{"one/gnumeric.desktop", "two/libreoffice_calc.desktop"}, "calc.json"},
      {{"one/gnumeric.desktop", "two/org.libreoffice.LibreOffice.calc.desktop"}, "calc.json"},
      {{"one/gnumeric.desktop", "two/libreoffice-writer.desktop"}, "gnumeric.json"},
      {{"one/gnumeric.desktop", "unlisted/libreoffice-calc.desktop"}, "gnumeric.json"},
  };
  for (const auto& each : cases) {
    const ScratchDirectory data;
    for (const auto& file : each.files) {
      const fs::path path(file);
      writeFile(data.path() / path.parent_path() / "applications" / path.filename(), "");
    }
    const DataDirectories directories((data.path() / "one").string() +
                                      "::relative:" + (data.path() / "two").string());
    EXPECT_EQ(bundle->resource("mappings", "json"), directory / each.document)
        << testing::PrintToString(each.files);
  }
  fs::remove(directory / "calc.json");
  const DataDirectories none("/nowhere");
  EXPECT_EQ(bundle->resource("mappings", "json"), directory / "mappings.json") << "a bundle without variants";
}

TEST_F(BundlesTest, TheInformationDictionaryGivesItsTexts) {
  const auto bundle = bundleWith(plist);
  EXPECT_EQ(bundle->information("CFBundleIdentifier"), "org.keyvora.keyvora");
  EXPECT_EQ(bundle->information("CFBundleShortVersionString"), "1.2 & ⌥");
  EXPECT_EQ(bundle->information("Empty"), "");
  EXPECT_EQ(bundle->information("Sections"), "a<b> c");
  for (const auto* key : {"Number", "Flag", "List", "Nested", "Inner", "inside", "Absent", ""}) {
    EXPECT_EQ(bundle->information(key), std::nullopt) << key;
  }
}

TEST_F(BundlesTest, AMalformedDictionaryIsNone) {
  for (const auto* text : {
           "",
           "bplist00\xd1\x01\x02",
           "{\"CFBundleIdentifier\": \"a\"}",
           "<plist><dict><key>CFBundleIdentifier</key><string>a</string></dict>",
           "<plist><array><key>CFBundleIdentifier</key><string>a</string></array></plist>",
           "<list><dict><key>CFBundleIdentifier</key><string>a</string></dict></list>",
           "<plist><dict><key>CFBundleIdentifier</key><string>a</string><key>b</key></dict></plist>",
           "<plist><dict><string>a</string><key>CFBundleIdentifier</key></dict></plist>",
           "<plist><dict><key>CFBundleIdentifier</key><string>a<b/></string></dict></plist>",
           "<plist></plist>",
       }) {
    EXPECT_EQ(bundleWith(text)->identifier(), std::nullopt) << text;
  }
}

}  // namespace
}  // namespace keyvora::x11
