#include "appcast/feed.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "feed_text.h"

namespace keyvora::appcast {
namespace {

using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;

constexpr auto address = "https://example.org/updates/feed.xml";

Feed read(const std::string& bytes, const std::vector<std::string>& languages = {}) {
  return readFeed(bytes, address, languages);
}

/// The only item of a feed.
FeedItem readOne(const std::string& items, const std::vector<std::string>& languages = {}) {
  const Feed feed = read(feedOf(items), languages);
  EXPECT_EQ(feed.error, std::nullopt);
  EXPECT_EQ(feed.items.size(), 1U);
  return feed.items.empty() ? FeedItem{} : feed.items.front();
}

std::vector<std::string> versions(const std::string& items) {
  const Feed feed = read(feedOf(items));
  EXPECT_EQ(feed.error, std::nullopt);
  std::vector<std::string> found;
  for (const auto& item : feed.items) found.push_back(item.version);
  return found;
}

std::string newest(const std::string& items, const std::string& current) {
  const Feed feed = read(feedOf(items));
  EXPECT_EQ(feed.error, std::nullopt);
  const FeedItem* found = newestUpdate(feed, current);
  return found != nullptr ? found->displayVersion : "none";
}

TEST(FeedTest, ReadsAWholeItem) {
  const FeedItem item = readOne(R"(<item>
    <title>1.4.0</title>
    <sparkle:version> 140 </sparkle:version>
    <sparkle:shortVersionString>1.4.0</sparkle:shortVersionString>
    <sparkle:minimumSystemVersion>99.0</sparkle:minimumSystemVersion>
    <sparkle:phasedRolloutInterval>86400</sparkle:phasedRolloutInterval>
    <description><![CDATA[<p>Better.</p>]]></description>
    <sparkle:releaseNotesLink>notes/1.4.html</sparkle:releaseNotesLink>
    <link>https://example.org/keyvora</link>
    <enclosure url="key vora-1.4.0.deb" length="1234567" type="application/octet-stream"/>
  </item>)");
  EXPECT_EQ(item.version, "140");
  EXPECT_EQ(item.displayVersion, "1.4.0");
  EXPECT_EQ(item.notes, "") << "HTML is not shown as tags";
  EXPECT_EQ(item.notesAddress, "https://example.org/updates/notes/1.4.html");
  EXPECT_EQ(item.pageAddress, "https://example.org/keyvora");
  EXPECT_EQ(item.downloadAddress, "https://example.org/updates/key%20vora-1.4.0.deb");
}

TEST(FeedTest, TheVersionAtTheEnclosureComesFirstThenTheElementThenTheFileName) {
  EXPECT_EQ(readOne(R"(<item><sparkle:version>1</sparkle:version>
                       <enclosure url="k_3.zip" sparkle:version="2"/></item>)")
                .version,
            "2");
  EXPECT_EQ(readOne(itemOf("1", R"(<enclosure url="k_3.zip"/>)")).version, "1");
  EXPECT_EQ(readOne(R"(<item><enclosure url="k_beta_3.1.zip"/></item>)").version, "3.1");
}

TEST(FeedTest, TheVersionForPeopleFallsBackToTheOther) {
  EXPECT_EQ(readOne(itemOf("57")).displayVersion, "57");
  EXPECT_EQ(
      readOne(
          R"(<item><enclosure url="k.zip" sparkle:version="57" sparkle:shortVersionString="1.3"/></item>)")
          .displayVersion,
      "1.3");
}

TEST(FeedTest, SparklesNamesAreKnownByTheirNamespaceNotByTheirPrefix) {
  const auto feed = read(R"(<rss xmlns:s="http://www.andymatuschak.org/xml-namespaces/sparkle"
      xmlns:sparkle="http://example.org/something-else"><channel><item>
      <sparkle:version>1</sparkle:version><s:version>2</s:version></item></channel></rss>)");
  ASSERT_EQ(feed.error, std::nullopt);
  EXPECT_THAT(feed.items, ElementsAre(Field(&FeedItem::version, "2")));
}

TEST(FeedTest, ItemsCountWhenTheirEnclosureNamesNoSystemOrLinux) {
  EXPECT_THAT(versions(itemOf("1", R"(<enclosure url="a"/>)") +                         //
                       itemOf("2", R"(<enclosure url="a" sparkle:os="linux"/>)") +      //
                       itemOf("3", R"(<enclosure url="a" sparkle:os="macos"/>)") +      //
                       itemOf("4", R"(<enclosure url="a" sparkle:os="windows"/>)") +    //
                       itemOf("5", R"(<enclosure url="a" sparkle:os="linux-x64"/>)") +  //
                       itemOf("6")),
              ElementsAre("1", "2", "6"));
}

TEST(FeedTest, OfSeveralEnclosuresTheOneForThisSystemCounts) {
  const auto item = readOne(itemOf("1", R"(<enclosure url="a.dmg" sparkle:os="macos"/>
                                           <enclosure url="a.deb" sparkle:os="linux"/>)"));
  EXPECT_EQ(item.downloadAddress, "https://example.org/updates/a.deb");
}

TEST(FeedTest, NamedChannelsArePassedOver) {
  EXPECT_THAT(versions(itemOf("1", "<sparkle:channel>beta</sparkle:channel>") +      //
                       itemOf("2", "<sparkle:channel> </sparkle:channel>") +         //
                       itemOf("3", "<sparkle:channel>no name!</sparkle:channel>") +  //
                       itemOf("4")),
              ElementsAre("2", "3", "4"));
}

TEST(FeedTest, DeltasArePassedOver) {
  EXPECT_THAT(versions(itemOf("1", R"(<enclosure url="a" sparkle:deltaFrom="0.9"/>)") +
                       itemOf("2", R"(<enclosure url="a"/><sparkle:deltas>
                         <enclosure url="b" sparkle:version="3" sparkle:deltaFrom="1"/></sparkle:deltas>)")),
              ElementsAre("2"));
}

TEST(FeedTest, TextsComeInTheUsersLanguage) {
  const auto item = itemOf("1", R"(<description xml:lang="fr">Mieux</description>
      <description>Better</description><description xml:lang="de-AT">Besser</description>)");
  EXPECT_EQ(readOne(item).notes, "Better");
  EXPECT_EQ(readOne(item, {"de_AT", "de", "fr"}).notes, "Besser");
  EXPECT_EQ(readOne(item, {"fr"}).notes, "Mieux");
  EXPECT_EQ(readOne(item, {"it"}).notes, "Better");
}

TEST(FeedTest, NotesAreShownWhenTheyAreText) {
  for (const auto& [description, notes] : std::initializer_list<std::pair<const char*, const char*>>{
           {R"(<description sparkle:format="plain-text">a &lt; b</description>)", "a < b"},
           {R"(<description sparkle:format="markdown">- a &amp; **b**</description>)", "- a & **b**"},
           {"<description> In short </description>", "In short"},
           {"<description>a &lt;b&gt;b&lt;/b&gt;</description>", ""},
           {"<description>a &amp;amp; b</description>", ""},
           {R"(<description sparkle:format="html">a &lt;br&gt; b</description>)", ""},
           {R"(<description sparkle:format="html">Better</description>)", "Better"},
       }) {
    EXPECT_EQ(readOne(itemOf("1", description)).notes, notes) << description;
  }
}

TEST(FeedTest, OtherEncodingsAreRead) {
  const auto feed = read(
      "<?xml version=\"1.0\" encoding=\"iso-8859-1\"?><rss "
      "xmlns:sparkle=\"http://www.andymatuschak.org/xml-namespaces/sparkle\"><channel><item>"
      "<sparkle:version>1</sparkle:version><description>\xE9</description></item></channel></rss>");
  ASSERT_EQ(feed.items.size(), 1U);
  EXPECT_EQ(feed.items.front().notes, "é");
}

TEST(FeedTest, AFeedWithoutItemsIsAFeed) {
  EXPECT_THAT(versions(""), IsEmpty());
}

TEST(NewestUpdateTest, IsTheHighestVersionWhateverTheOrder) {
  EXPECT_EQ(newest(itemOf("41") + itemOf("43") + itemOf("42"), "40"), "43");
  EXPECT_EQ(newest(itemOf("1.9") + itemOf("1.10"), "1.2"), "1.10");
}

TEST(NewestUpdateTest, IsTheFirstAmongEquals) {
  const auto named = [](const char* version, const char* name) {
    return itemOf(version,
                  std::string("<sparkle:shortVersionString>") + name + "</sparkle:shortVersionString>");
  };
  EXPECT_EQ(newest(named("2", "first") + named("2.0", "second"), "1"), "first");
}

TEST(NewestUpdateTest, IsStrictlyNewer) {
  EXPECT_EQ(newest(itemOf("42"), "42"), "none");
  EXPECT_EQ(newest(itemOf("42"), "42.0"), "none");
  EXPECT_EQ(newest(itemOf("41"), "42"), "none");
  EXPECT_EQ(newest("", "42"), "none");
}

TEST(NewestUpdateTest, PassesOverWhatIsHigherButNotForUs) {
  EXPECT_EQ(newest(itemOf("90", R"(<enclosure url="a" sparkle:os="macos"/>)") +
                       itemOf("80", "<sparkle:channel>beta</sparkle:channel>") + itemOf("43"),
                   "42"),
            "43");
}

}  // namespace
}  // namespace keyvora::appcast
