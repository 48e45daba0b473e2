#include "appcast/address.h"

#include <gtest/gtest.h>

namespace keyvora::appcast {
namespace {

constexpr auto base = "https://example.org/updates/feed.xml";

TEST(AddressTest, IsRelativeToTheFeed) {
  EXPECT_EQ(webAddress("notes.html", base), "https://example.org/updates/notes.html");
  EXPECT_EQ(webAddress("/notes.html", base), "https://example.org/notes.html");
  EXPECT_EQ(webAddress("//other.org/x", base), "https://other.org/x");
  EXPECT_EQ(webAddress("http://other.org/x", base), "http://other.org/x");
}

TEST(AddressTest, EscapesSpaces) {
  EXPECT_EQ(webAddress("my app.zip", base), "https://example.org/updates/my%20app.zip");
}

TEST(AddressTest, IsOnlyEverOfTheWeb) {
  for (const auto* other : {"file:///etc/passwd", "ftp://example.org/x", "mailto:me@example.org"}) {
    EXPECT_EQ(webAddress(other, ""), std::nullopt) << other;
    EXPECT_NE(webAddress(other, base).value_or("").substr(0, 5), "file:") << other;
  }
  EXPECT_EQ(webAddress("file:///etc/passwd", base), std::nullopt);
}

TEST(AddressTest, HasAHostThatIsTextAndIsWrittenInAscii) {
  EXPECT_EQ(webAddress("https://bücher.example/x", ""), "https://xn--bcher-kva.example/x");
  EXPECT_EQ(webAddress("HTTPS://Example.org/X", ""), "https://Example.org/X");
  EXPECT_EQ(webAddress("https://exampl\xFF\xF6g/2.0", ""), std::nullopt);
  EXPECT_EQ(webAddress("https://exampl\xC2\x85g/2.0", ""), std::nullopt);
}

TEST(AddressTest, EndsItsHostWithASlashOrNotAtAll) {
  for (const auto* broken : {"https://examp;e.org/2.0", "https://example.org;x", "//example.org;x"}) {
    EXPECT_EQ(webAddress(broken, base), std::nullopt) << broken;
  }
}

TEST(AddressTest, WithoutABaseItMustBeWhole) {
  EXPECT_EQ(webAddress("https://example.org/x", ""), "https://example.org/x");
  EXPECT_EQ(webAddress("", ""), std::nullopt);
  EXPECT_EQ(webAddress("http://", ""), std::nullopt);
}

TEST(AddressTest, UnderInvalidThereIsNoServer) {
  for (const auto* none : {"https://updates.invalid/appcast.xml", "http://a.b.INVALID:8080/x"}) {
    EXPECT_TRUE(namesNoServer(none)) << none;
  }
  for (const auto* some : {"https://example.org/x.invalid", "https://invalid.example.org/", "https://invalid",
                           "", "not an address.invalid", "https://x.invalid.org/"}) {
    EXPECT_FALSE(namesNoServer(some)) << some;
  }
}

}  // namespace
}  // namespace keyvora::appcast
