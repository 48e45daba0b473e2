#import "hosts/macos/strings.h"

#include <gtest/gtest.h>

namespace keyvora::macos {
namespace {

TEST(Strings, TextGoesThereAndBack) {
  for (const std::string text : {"", "Excel", "⌥ HF", "e\u0301", "😀", "a\nb"}) {
    EXPECT_EQ(utf8(nsString(text)), text);
  }
  EXPECT_EQ(utf8(nsString(std::string_view("a\0b", 3))), std::string("a\0b", 3));
}

TEST(Strings, TextThatIsNotUtf8IsReadAsLatin1AndNeverNil) {
  EXPECT_EQ(utf8(nsString("caf\xe9")), "café");
  EXPECT_EQ(utf8(nsString("\xff")), "ÿ");
  EXPECT_NE(nsString(std::string_view()), nil);
  EXPECT_EQ(utf8(nil), "");
}

TEST(Strings, AnUnpairedSurrogateDoesNotLoseTheRest) {
  const unichar units[] = {'a', 0xD800, 'b'};
  const std::string text = utf8([NSString stringWithCharacters:units length:3]);
  EXPECT_TRUE(text.starts_with("a"));
  EXPECT_TRUE(text.ends_with("b"));
}

TEST(Strings, PathsGoThereAndBack) {
  const std::filesystem::path path = "/tmp/Application Support/mäppings.json";
  EXPECT_EQ(filePath(fileURL(path)), path);
}

}  // namespace
}  // namespace keyvora::macos
