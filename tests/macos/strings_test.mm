#import "platform/macos/strings.h"

#include <gtest/gtest.h>

namespace keyvora::macos {
namespace {

TEST(Strings, TextGoesThereAndBack) {
  for (const std::string text : {"", "Excel", "⌥ HF", "e\u0301", "😀", "a\nb"}) {
    EXPECT_EQ(utf8(nsString(text)), text);
  }
  EXPECT_EQ(utf8(nsString(std::string_view("a\0b", 3))), std::string("a\0b", 3));
}

TEST(Strings, IllFormedTextIsRepairedAndNeverNil) {
  ASSERT_NE(nsString("a\xff"
                     "b"),
            nil);
  EXPECT_EQ(utf8(nil), "");
}

TEST(Strings, PathsGoThereAndBack) {
  const std::filesystem::path path = "/tmp/Application Support/mäppings.json";
  EXPECT_EQ(filePath(fileURL(path)), path);
}

}  // namespace
}  // namespace keyvora::macos
