// Broken and hostile feeds, each with its error message.

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
            "item 1: the address of its release notes is not an http or https address"},
        HostileCase{"LongLink",
                    feedOf(itemOf("1", "<link>http://example.org/" + std::string(2048, 'a') + "</link>")),
                    "item 1: the link is too long"}),
    [](const auto& test) { return test.param.name; });

}  // namespace
}  // namespace keyvora::appcast
