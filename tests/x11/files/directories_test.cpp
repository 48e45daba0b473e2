#include <gtest/gtest.h>

#include "hosts/x11/files/file_system.h"
#include "hosts/x11/loop/main_loop.h"
#include "tests/x11/scratch.h"

namespace keyvora::x11 {
namespace {

namespace fs = std::filesystem;

class DirectoriesTest : public testing::Test {
 protected:
  MainLoop loop;
  FileSystem files{loop.wait()};
};

TEST_F(DirectoriesTest, TheUsersDirectoriesAreUnderHome) {
  const Variable home("HOME", "/home/somebody");
  EXPECT_EQ(files.libraryDirectory(), "/home/somebody/Library");
  EXPECT_EQ(files.applicationSupportDirectory(), "/home/somebody/Library/Application Support");
}

TEST_F(DirectoriesTest, WithoutHomeTheUsersPasswordEntrySaysWhereTheyAre) {
  std::optional<fs::path> expected;
  {
    const Variable home("HOME", std::nullopt);
    expected = files.libraryDirectory();
  }
  ASSERT_TRUE(expected);
  EXPECT_TRUE(expected->is_absolute());
  EXPECT_EQ(expected->filename(), "Library");
  const Variable relative("HOME", "not/absolute");
  EXPECT_EQ(files.libraryDirectory(), expected);
}

}  // namespace
}  // namespace keyvora::x11
