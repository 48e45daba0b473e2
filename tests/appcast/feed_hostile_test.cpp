// Feeds that are broken or mean harm: each with the words that it is refused with.

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

#include "appcast/feed.h"
#include "feed_text.h"

namespace keyvora::appcast {
namespace {

struct HostileCase {
  const char* name;
  std::string bytes;
  const char* error;

  friend void PrintTo(const HostileCase& one, std::ostream* out) { *out << one.name; }
};

class HostileFeedTest : public testing::TestWithParam<HostileCase> {};

TEST_P(HostileFeedTest, IsRefusedInClearWords) {
  const Feed feed = readFeed(GetParam().bytes, "https://example.org/feed.xml", {});
  EXPECT_EQ(feed.error, GetParam().error);
  EXPECT_TRUE(feed.items.empty());
}

constexpr auto entityBomb = R"(<?xml version="1.0"?>
<!DOCTYPE lolz [<!ENTITY a "aaaaaaaaaa"><!ENTITY b "&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;">]>
<rss><channel><item><title>&b;</title></item></channel></rss>)";

constexpr auto externalEntity = R"(<!DOCTYPE rss [<!ENTITY file SYSTEM "file:///etc/passwd">]>
<rss><channel><item><title>&file;</title></item></channel></rss>)";

INSTANTIATE_TEST_SUITE_P(
    Documents, HostileFeedTest,
    testing::Values(HostileCase{"Empty", "", "it is not XML: No document element found"},
                    HostileCase{"Text", "not found", "it is not XML: No document element found"},
                    HostileCase{"CutOff", "<rss><channel><item>", "it is not XML: Start-end tags mismatch"},
                    HostileCase{"Page", "<html><body>Log in</body></html>", "it is not an RSS channel"},
                    HostileCase{"NoChannel", "<rss></rss>", "it is not an RSS channel"},
                    HostileCase{"EntityBomb", entityBomb, "it declares a document type"},
                    HostileCase{"ExternalEntity", externalEntity, "it declares a document type"}),
    [](const auto& test) { return test.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Items, HostileFeedTest,
    testing::Values(
        HostileCase{"NoVersion", feedOf(itemOf("1") + "<item/>"), "item 2: it has no version"},
        HostileCase{"EmptyVersion", feedOf(itemOf(" \n ")), "item 1: it has no version"},
        HostileCase{"LongVersion", feedOf(itemOf(std::string(101, '1'))), "item 1: its version is too long"},
        HostileCase{"VersionOfTwoLines", feedOf(itemOf("1\n2")),
                    "item 1: its version has control characters"},
        HostileCase{"ShortVersionWithEscape",
                    feedOf(itemOf("1", "<sparkle:shortVersionString>a&#27;[2J</sparkle:shortVersionString>")),
                    "item 1: its short version has control characters"},
        HostileCase{"NotUtf8", feedOf(itemOf("1\xFF")), "item 1: it has text that is not UTF-8"},
        HostileCase{"FileEnclosure", feedOf(itemOf("1", R"(<enclosure url="file:///etc/passwd"/>)")),
                    "item 1: the address of its enclosure is not an http or https address"},
        HostileCase{"EnclosureWithoutAddress", feedOf(itemOf("1", "<enclosure/>")),
                    "item 1: its enclosure has no address"},
        HostileCase{"FileLink", feedOf(itemOf("1", "<link>file:///bin/sh</link>")),
                    "item 1: the link is not an http or https address"},
        HostileCase{
            "FileNotes",
            feedOf(itemOf("1", "<sparkle:releaseNotesLink>file:///etc/hosts</sparkle:releaseNotesLink>")),
            "item 1: the address of its release notes is not an http or https address"}),
    [](const auto& test) { return test.param.name; });

TEST(HostileFeedSizeTest, DeepNestingIsQuicklyReadOrRefused) {
  std::string deep;
  for (int i = 0; i < 300'000; ++i) deep += "<a>";
  EXPECT_TRUE(readFeed(deep, "https://example.org/", {}).error.has_value());
}

std::string attributes(int count) {
  std::string result;
  for (int i = 0; i < count; ++i) result += " a" + std::to_string(i) + "=''";
  return result;
}

/// The versions in a feed whose item has one at its enclosure, behind so many other attributes.
std::vector<std::string> versionsBehind(int count) {
  std::vector<std::string> versions;
  const auto item = "<item><enclosure url='k_1.deb'" + attributes(count) + " sparkle:version='2'/></item>";
  for (const auto& each : readFeed(feedOf(item), "https://example.org/", {}).items)
    versions.push_back(each.version);
  return versions;
}

TEST(HostileFeedSizeTest, OnlyTheFirstAttributesOfAnElementAreLookedAt) {
  // 64, the address among them; behind them the version is that of the file's name.
  EXPECT_EQ(versionsBehind(62), std::vector<std::string>{"2"});
  EXPECT_EQ(versionsBehind(63), std::vector<std::string>{"1"});
}

TEST(HostileFeedSizeTest, OnlyTheFirstAttributesDeclareANamespace) {
  const auto declares = [](int count) {
    const std::string sparkle = " xmlns:s='http://www.andymatuschak.org/xml-namespaces/sparkle'";
    const auto feed = "<rss" + attributes(count) + sparkle +
                      "><channel><item><s:version>1</s:version></item></channel></rss>";
    return !readFeed(feed, "https://example.org/", {}).error;
  };
  EXPECT_TRUE(declares(63));
  EXPECT_FALSE(declares(64));
}

TEST(HostileFeedSizeTest, ManyAttributesStayCheapInEveryItem) {
  // Every item looks for its version's namespace: without a limit, a billion attributes.
  std::string items;
  for (int i = 0; i < 20'000; ++i) items += "<item><enclosure url='k_1.deb'/><x:version>1</x:version></item>";
  const Feed feed = readFeed("<rss" + attributes(50'000) + "><channel>" + items + "</channel></rss>",
                             "https://example.org/", {});
  EXPECT_EQ(feed.error, std::nullopt);
  EXPECT_EQ(feed.items.size(), 20'000U);
}

}  // namespace
}  // namespace keyvora::appcast
