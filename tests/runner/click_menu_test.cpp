#include <optional>
#include <variant>

#include "tests/runner/runner_fixture.h"

namespace keyvora::testing {
namespace {

using platform::AttributeAnswer;
using platform::OtherValue;
using simulated::TraceEntry;
using simulated::TreeElementRef;
using ::testing::ElementsAreArray;
using Path = std::vector<std::string>;

class ClickMenuTest : public RunnerTest {
 protected:
  TreeElementRef titled(const std::string& title, std::vector<TreeElementRef> children = {}) {
    return host.accessibility.element(title, std::move(children));
  }

  TreeElementRef container(std::vector<TreeElementRef> children = {}) {
    return host.accessibility.element(std::nullopt, std::move(children));
  }

  /// Gives the element another identifier in the trace than its title.
  static TreeElementRef named(const std::string& identifier, TreeElementRef element) {
    element->identifier = identifier;
    return element;
  }

  static TreeElementRef with(TreeElementRef element, const std::string& attribute, AttributeAnswer answer) {
    element->attributes[attribute] = std::move(answer);
    return element;
  }

  void setMenus(std::vector<TreeElementRef> menus) {
    bar = named("bar", container(std::move(menus)));
    host.accessibility.setMenuBar(process, bar);
  }

  std::vector<TraceEntry> clicking(const Path& path) {
    runner.clickMenu(path, "M  Name");
    return host.trace.take();
  }

  void expectPressed(const Path& path, const std::string& element) {
    EXPECT_THAT(clicking(path), ElementsAreArray({pressed(element), logged("M  Name (menu)")}));
  }

  void expectLine(const Path& path, const std::string& line) {
    EXPECT_THAT(clicking(path), ElementsAreArray({logged(line)}));
  }

  TreeElementRef bar;
};

TEST_F(ClickMenuTest, FollowsThePathThroughUntitledContainers) {
  setMenus({titled("Apple", {container({titled("Save")})}),
            titled("File", {container({titled("Open"), container(),
                                       named("File Save", titled("Save", {container({titled("As")})}))})})});
  expectPressed({"File", "Save"}, "File Save");
  expectPressed({"File", "Save", "As"}, "As");
  expectPressed({"File"}, "File");
  expectPressed({}, "bar");
}

TEST_F(ClickMenuTest, FindsItemsThatHangUnderTheirMenuDirectly) {
  setMenus({titled("File", {titled("Save")})});
  expectPressed({"File", "Save"}, "Save");
}

TEST_F(ClickMenuTest, ATargetThatIsNotRunningEndsItAtOnce) {
  setMenus({titled("File")});
  host.applications.quit(process);
  expectLine({"File"}, "M  Name FAILED: Excel is not running");
  expectLine({}, "M  Name FAILED: Excel is not running");
  EXPECT_EQ(host.failures.count(simulated::Call::elementAttribute), 0U);
}

TEST_F(ClickMenuTest, AMenuBarThatCannotBeRead) {
  expectLine({"File"}, "M  Name FAILED: no menu bar");
  setMenus({titled("File")});
  const auto root = host.accessibility.roots[process];
  const AttributeAnswer present = root->attributes["AXMenuBar"];
  for (const auto& answer :
       {AttributeAnswer{-25204, {}}, AttributeAnswer{-25204, present.value}, AttributeAnswer{0, {}},
        AttributeAnswer{0, std::string("bar")}, AttributeAnswer{0, OtherValue{}}}) {
    root->attributes["AXMenuBar"] = answer;
    expectLine({"File"}, "M  Name FAILED: no menu bar");
    expectLine({}, "M  Name FAILED: no menu bar");
  }
  root->attributes["AXMenuBar"] = present;
  host.accessibility.trusted = false;
  expectLine({"File"}, "M  Name FAILED: no menu bar");
}

TEST_F(ClickMenuTest, ChildrenThatCannotBeReadEndItAtTheTitleSought) {
  setMenus({titled("File", {titled("Save")})});
  const auto file = std::dynamic_pointer_cast<simulated::TreeElement>(
      std::get<std::vector<platform::ElementRef>>(bar->attributes["AXChildren"].value).front());
  const auto children = file->attributes["AXChildren"].value;
  for (const auto& answer :
       {AttributeAnswer{-25204, {}}, AttributeAnswer{-25205, children}, AttributeAnswer{0, {}},
        AttributeAnswer{0, std::string("children")}, AttributeAnswer{0, OtherValue{}},
        AttributeAnswer{0, platform::ElementRef(titled("Save"))}}) {
    file->attributes["AXChildren"] = answer;
    expectLine({"File", "Save"}, "M  Name FAILED at Save");
    expectPressed({"File"}, "File");
  }
  bar->attributes["AXChildren"] = {-25204, {}};
  expectLine({"File", "Save"}, "M  Name FAILED at File");
}

TEST_F(ClickMenuTest, NoSuchTitleOrNoChildrenAtAll) {
  setMenus({titled("File", {container({titled("Save")})}), titled("Edit")});
  expectLine({"View"}, "M  Name FAILED: no menu named View");
  expectLine({"File", "Open"}, "M  Name FAILED: no menu named Open");
  expectLine({"Edit", "Undo"}, "M  Name FAILED: no menu named Undo");
  expectLine({"File", "Save", "As"}, "M  Name FAILED: no menu named As");
  expectLine({""}, "M  Name FAILED: no menu named ");
  setMenus({});
  expectLine({"File"}, "M  Name FAILED: no menu named File");
}

TEST_F(ClickMenuTest, TitlesMatchWhenCanonicallyEquivalentAndNotOtherwise) {
  struct Case {
    const char* title;
    const char* sought;
    bool matches;
  };
  for (const auto& [title, sought, matches] : {
           Case{"Save", "Save", true},
           Case{"Caf\u00E9", "Cafe\u0301", true},
           Case{"Cafe\u0301", "Caf\u00E9", true},
           Case{"\u212B", "\u00C5", true},
           Case{"", "", true},
           Case{"Save", "save", false},
           Case{"Save ", "Save", false},
           Case{"Save", " Save", false},
           Case{"Save As", "Save", false},
           Case{"Save\u2026", "Save...", false},
           Case{"Save...", "Save\u2026", false},
           Case{"\uFB01", "fi", false},
       }) {
    setMenus({named("found", titled(title))});
    if (matches) {
      expectPressed({sought}, "found");
    } else {
      expectLine({sought}, std::string("M  Name FAILED: no menu named ") + sought);
    }
  }
}

TEST_F(ClickMenuTest, TheFirstMatchInVisitingOrderWins) {
  setMenus({titled("Other", {titled("X")}), container({named("below", titled("X"))}),
            named("later", titled("X"))});
  expectPressed({"X"}, "below");
  setMenus({named("first", titled("X")), container({titled("X")}), titled("X")});
  expectPressed({"X"}, "first");
  setMenus({container({titled("Y"), named("second", titled("X")), titled("X")})});
  expectPressed({"X"}, "second");
}

TEST_F(ClickMenuTest, LooksNoFurtherThanTwoLevelsDown) {
  setMenus({titled("File", {titled("Save")}),
            container({container({titled("Save")}), titled("Y", {titled("Save")})})});
  expectLine({"Save"}, "M  Name FAILED: no menu named Save");
}

TEST_F(ClickMenuTest, AMatchIsNotGivenUpForALaterOne) {
  setMenus({titled("File", {titled("Open")}), titled("File", {titled("Save")})});
  expectLine({"File", "Save"}, "M  Name FAILED: no menu named Save");
}

TEST_F(ClickMenuTest, WhatIsNoTextIsNoTitle) {
  for (const auto& title :
       {AttributeAnswer{0, {}}, AttributeAnswer{0, OtherValue{}}, AttributeAnswer{-25212, {}},
        AttributeAnswer{0, std::vector<platform::ElementRef>{}}}) {
    setMenus({with(container({named("below", titled("X"))}), "AXTitle", title)});
    expectPressed({"X"}, "below");
  }
}

TEST_F(ClickMenuTest, TheErrorOfReadingATitleDoesNotCount) {
  setMenus({with(container({titled("Z")}), "AXTitle", {-25212, std::string("X")})});
  bar->identifier = "bar";
  EXPECT_EQ(clicking({"X"}).back(), logged("M  Name (menu)"));
  expectLine({"Z"}, "M  Name FAILED: no menu named Z");
}

TEST_F(ClickMenuTest, UntitledElementsWhoseChildrenCannotBeReadArePassedOver) {
  const auto below = std::vector<platform::ElementRef>{titled("X")};
  for (const auto& answer :
       {AttributeAnswer{-25204, {}}, AttributeAnswer{-25204, below}, AttributeAnswer{0, {}},
        AttributeAnswer{0, OtherValue{}}, AttributeAnswer{0, std::vector<platform::ElementRef>{}}}) {
    setMenus({with(container(), "AXChildren", answer), named("later", titled("X"))});
    expectPressed({"X"}, "later");
  }
}

TEST_F(ClickMenuTest, ThePressCountsWhateverItAnswers) {
  setMenus({titled("File")});
  host.failures.always(simulated::Call::elementPerform);
  expectLine({"File"}, "M  Name (menu)");
  EXPECT_EQ(host.failures.count(simulated::Call::elementPerform), 1U);
  host.failures.clear();
  const auto refusing = titled("Edit");
  refusing->performError = -25205;
  setMenus({refusing});
  expectPressed({"Edit"}, "Edit");
}

}  // namespace
}  // namespace keyvora::testing
