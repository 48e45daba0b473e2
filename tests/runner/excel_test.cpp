#include "runner/excel.h"

#include "tests/runner/runner_fixture.h"

namespace keyvora::testing {
namespace {

class ExcelTest : public ::testing::Test {
 protected:
  simulated::Host host;
  platform::Scope scope{host.platform()};
};

TEST_F(ExcelTest, IsNoneWhenNoInstanceRuns) {
  EXPECT_EQ(Excel::app(), std::nullopt);
  EXPECT_FALSE(Excel::isFrontmost());
  host.applications.start("com.microsoft.excel", 1);
  host.applications.start("com.microsoft.Excel.helper", 2);
  EXPECT_EQ(Excel::app(), std::nullopt);
}

TEST_F(ExcelTest, IsTheFirstInstanceThatIsListed) {
  host.applications.start("com.apple.finder", 1);
  host.applications.start("com.microsoft.Excel", 30);
  host.applications.start("com.microsoft.Excel", 20);
  EXPECT_EQ(Excel::app(), 30);
  host.applications.quit(30);
  EXPECT_EQ(Excel::app(), 20) << "asked afresh";
}

TEST_F(ExcelTest, IsFrontmostByTheExactIdentifierOfTheApplicationInFront) {
  struct Case {
    std::optional<std::string> front;
    bool expected;
  };
  for (const auto& [front, expected] :
       {Case{std::nullopt, false}, Case{"", false}, Case{"com.microsoft.excel", false},
        Case{"COM.MICROSOFT.EXCEL", false}, Case{" com.microsoft.Excel", false},
        Case{"com.microsoft.Excel ", false}, Case{"com.microsoft.Word", false},
        Case{"com.microsoft.Excel", true}}) {
    host.applications.front = front;
    EXPECT_EQ(Excel::isFrontmost(), expected) << front.value_or("none");
  }
}

TEST_F(ExcelTest, AnyInstanceInFrontCountsEvenOneThatIsNotListed) {
  host.applications.front = "com.microsoft.Excel";
  EXPECT_TRUE(Excel::isFrontmost());
  EXPECT_EQ(Excel::app(), std::nullopt);
}

}  // namespace
}  // namespace keyvora::testing
