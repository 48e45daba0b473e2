#include "tools/update.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <set>
#include <sstream>

#include "tests/support/scratch_directory.h"
#include "tests/tools/golden.h"
#include "tools/command.h"
#include "tools/embedded.h"

namespace keyvora::tools {
namespace {

using testing::HasSubstr;
using testing::Not;

TEST(ShippedTest, KnowsEveryEntryOfTheDocumentsThatAreShipped) {
  for (const auto& shipped : shippedDocuments()) {
    const auto known = everShipped(shipped.name);
    const Document document{std::string(shipped.bytes)};
    EXPECT_GT(document.entries().size(), 100U) << shipped.name;
    for (const auto& entry : document.entries()) {
      EXPECT_TRUE(known.contains(fingerprint(entry.source)))
          << shipped.name << " " << entry.sequence.keys
          << " is not in resources/shipped.txt: run scripts/shipped";
    }
  }
}

/// Entries are only ever added to the list: each earlier version of it must be its beginning.
TEST(ShippedTest, ForgetsNoEntry) {
  const std::string_view all = embedded::shippedEntries;
  constexpr std::size_t lines = 716;
  std::size_t end = 0;
  std::uint64_t hash = 0xCBF29CE484222325;
  for (std::size_t line = 0; line < lines && end < all.size(); ++end) {
    hash = (hash ^ static_cast<unsigned char>(all[end])) * 0x100000001B3;
    if (all[end] == '\n') ++line;
  }
  EXPECT_EQ(hash, 0x1F0C2CFA44FCAC9AU);
}

TEST(ShippedTest, AFingerprintLooksAtWhatIsMeantAndNotAtHowItIsWritten) {
  const auto of = [](const std::string& json) {
    const auto parsed = json::Tree::parse(json);
    return fingerprint(std::get<json::Tree>(parsed).root());
  };
  EXPECT_EQ(of(R"({"a": "x", "b": [1, true]})"), of(R"({ "b":[1,true],"\u0061":"\u0078" })"));
  EXPECT_NE(of(R"({"a": "x"})"), of(R"({"a": "y"})"));
  EXPECT_NE(of(R"({"a": 1})"), of(R"({"a": "1"})"));
  EXPECT_NE(of(R"(["ab", "c"])"), of(R"(["a", "bc"])"));
  EXPECT_NE(of(R"({"a": 1})"), of(R"({"a": 1, "b": 2})"));
}

/// Commands run with their own home directory.
struct UpdateTest : testing::Test {
  UpdateTest() { setenv("HOME", home.path().c_str(), 1); }

  int run(const std::vector<std::string>& arguments) {
    out.str("");
    error.str("");
    return tools::run(arguments, {out, error});
  }

  void write(const std::string& bytes) const {
    std::filesystem::create_directories(file.parent_path());
    test::write(file, bytes);
  }

  /// Calc's document with the first `from` replaced.
  static std::string calc(const std::string& from = "", const std::string& by = "") {
    std::string bytes(embedded::calcDocument);
    const auto at = bytes.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    return bytes.replace(at, from.size(), by);
  }

  static std::string withCarriageReturns(const std::string& bytes) {
    std::string result;
    for (const char c : bytes) result += c == '\n' ? "\r\n" : std::string(1, c);
    return result;
  }

  test::ScratchDirectory home;
  const std::filesystem::path file = home / "Library/Application Support/keyvora/mappings.json";
  const std::filesystem::path backup = home / "Library/Application Support/keyvora/mappings.json.backup";
  std::ostringstream out;
  std::ostringstream error;
};

/// An entry as in Calc's first document; it has changed since.
const std::string formerEntry = R"({"keys": "HFP", "name": "Clone formatting",
        "action": {"kind": "menu", "path": ["Format", "Clone Formatting"]} })";

TEST_F(UpdateTest, UsePutsADocumentInPlaceAndKeepsTheOldOne) {
  EXPECT_EQ(run({"use", "gnumeric"}), 0);
  EXPECT_EQ(contentOf(file), embedded::gnumericDocument);
  EXPECT_FALSE(std::filesystem::exists(backup));
  EXPECT_EQ(run({"use", "calc"}), 0);
  EXPECT_EQ(contentOf(file), embedded::calcDocument);
  EXPECT_EQ(contentOf(backup), embedded::gnumericDocument);
  EXPECT_EQ(run({"use", "excel"}), 0);
  EXPECT_EQ(contentOf(backup.string() + "2"), embedded::calcDocument);
  EXPECT_EQ(contentOf(backup), embedded::gnumericDocument);
  EXPECT_EQ(run({"use", "excel"}), 0);
  EXPECT_THAT(out.str(), HasSubstr("already"));
  EXPECT_FALSE(std::filesystem::exists(backup.string() + "3"));
  EXPECT_EQ(run({"use", "numbers"}), 2);
  EXPECT_THAT(error.str(), HasSubstr("no document called numbers; there are calc, gnumeric and excel"));
}

TEST_F(UpdateTest, AFileOfTheUsersBesideItIsNotWrittenOver) {
  write(calc());
  const auto theirs = file.string() + ".new";
  test::write(theirs, "theirs");
  EXPECT_EQ(run({"use", "gnumeric"}), 0);
  EXPECT_EQ(contentOf(file), embedded::gnumericDocument);
  EXPECT_EQ(contentOf(theirs), "theirs");
}

TEST_F(UpdateTest, NothingIsNewInWhatHasJustCome) {
  write(calc());
  EXPECT_EQ(run({"diff"}), 0);
  EXPECT_EQ(run({"update"}), 0);
  EXPECT_EQ(contentOf(file), embedded::calcDocument);
  EXPECT_FALSE(std::filesystem::exists(backup));
}

TEST_F(UpdateTest, WhatTheUserChangedOrTookOutStays) {
  const auto mine = calc(R"x("name": "Paste values (Paste Special)")x", R"("name": "My paste")");
  write(mine);
  EXPECT_EQ(run({"diff"}), 0);
  EXPECT_THAT(out.str(), HasSubstr("yours   HVV  Paste values (Paste Special)\n"));
  EXPECT_EQ(run({"update"}), 0);
  EXPECT_EQ(contentOf(file), mine);
  const auto less = calc(R"({ "keys": "HVP",)", R"({ "keys": "QQQQ",)");
  write(less);
  EXPECT_EQ(run({"update"}), 0);
  EXPECT_EQ(contentOf(file), less);
}

TEST_F(UpdateTest, WhatTheUserTookOutStaysOutWhenItIsMended) {
  // An entry of Calc's first document; H L N came with it and was mended since.
  write(R"({"version": 1, "tabs": {}, "sequences": [)" + formerEntry + "]}");
  EXPECT_EQ(run({"diff", "--from", "calc"}), 1);
  EXPECT_THAT(out.str(), HasSubstr("mended  HFP  "));
  EXPECT_THAT(out.str(), Not(HasSubstr("HLN")));
  EXPECT_THAT(out.str(), HasSubstr("new     "));
}

TEST_F(UpdateTest, WhatIsNewAndMendedComesAndAllElseStaysByTheByte) {
  const std::string start =
      "{\r\n\t\"mine\": [1, 2 , 3],\r\n\t\"version\": 1, \"tabs\": {\"H\": \"Höme\"},\r\n  \"sequences\": "
      "[\r\n"
      "      { \"keys\": \"QQ\",   \"name\": \"Mine\", \"action\": {\"kind\": \"menu\", \"path\": [\"A\"]} "
      "},\r\n      ";
  const std::string end = "  ,\r\n  ], \"after\": \"]}\"\r\n}\r\n\r\n";
  write(start + withCarriageReturns(formerEntry) + end);
  EXPECT_EQ(run({"diff", "--from", "calc"}), 1);
  EXPECT_THAT(out.str(), HasSubstr("mended  HFP  "));
  EXPECT_THAT(out.str(), HasSubstr("new     "));
  EXPECT_THAT(contentOf(file), HasSubstr(withCarriageReturns(formerEntry)));
  EXPECT_EQ(run({"update"}), 0);
  const auto now = contentOf(file);
  EXPECT_EQ(now.substr(0, start.size()), start);
  EXPECT_EQ(now.substr(now.size() - end.size()), end);
  EXPECT_THAT(now, Not(HasSubstr(withCarriageReturns(formerEntry))));
  for (std::size_t at = now.find('\n'); at != std::string::npos; at = now.find('\n', at + 1)) {
    ASSERT_EQ(now[at - 1], '\r') << at;
  }
  EXPECT_TRUE(Document(now).isSound());
  EXPECT_EQ(contentOf(backup), start + withCarriageReturns(formerEntry) + end);
  EXPECT_EQ(run({"diff"}), 0) << out.str();
}

TEST_F(UpdateTest, AMarkRemarksAndTheOldMacsLineEndsStay) {
  const auto withReturns = [](std::string text) {
    std::ranges::replace(text, '\n', '\r');
    return text;
  };
  // The remarks would end a text that was read carelessly.
  const std::string start = "\xEF\xBB\xBF" + withReturns(R"x({
	"//": "]}, \"sequences\": [",
	"version": 1, "tabs": {},
	"sequences": [
		)x");
  const std::string mine = R"x({"//": "mine }]", "keys": "Q Q", "name": "Mine",
		"action": {"kind": "keytips", "keys": "Q"}})x";
  const auto middle = withReturns(",\n\t\t" + mine);
  const auto end = withReturns("\n\t]\n}");
  const auto former = withReturns(formerEntry);
  write(start + former + middle + end);
  EXPECT_EQ(run({"update", "--from", "calc"}), 0) << error.str();
  const auto now = contentOf(file);
  EXPECT_THAT(now, testing::StartsWith(start));
  EXPECT_THAT(now, HasSubstr(middle));
  EXPECT_THAT(now, testing::EndsWith(end));
  EXPECT_THAT(now, Not(HasSubstr("\n")));
  EXPECT_THAT(now, Not(HasSubstr(former)));
  EXPECT_TRUE(Document(now).isSound());
  EXPECT_EQ(run({"diff"}), 0) << out.str();
}

TEST_F(UpdateTest, WhatCannotBeUpdatedIsLeftAlone) {
  EXPECT_EQ(run({"update"}), 2);
  EXPECT_THAT(error.str(), HasSubstr("you have no document yet"));
  write("{");
  EXPECT_EQ(run({"update"}), 2);
  EXPECT_THAT(error.str(), HasSubstr("does not load; mend it first"));
  write(R"({"version": 1, "tabs": {}, "sequences": []})");
  EXPECT_EQ(run({"diff"}), 2);
  EXPECT_THAT(error.str(),
              HasSubstr("nothing in it came with keyvora; say with which document to compare it"));
  EXPECT_EQ(run({"diff", "--from", "numbers"}), 2);
  EXPECT_THAT(error.str(), HasSubstr("no document called numbers"));
  EXPECT_EQ(run({"update", "--from", "gnumeric"}), 0);
  EXPECT_TRUE(Document(contentOf(file)).isSound()) << contentOf(file);
  EXPECT_EQ(run({"diff"}), 0);
}

TEST_F(UpdateTest, ALinkStaysOne) {
  write(calc());
  std::filesystem::rename(file, home / "dotfile");
  std::filesystem::create_symlink(home / "dotfile", file);
  EXPECT_EQ(run({"use", "gnumeric"}), 0);
  EXPECT_TRUE(std::filesystem::is_symlink(file));
  EXPECT_EQ(contentOf(home / "dotfile"), embedded::gnumericDocument);
  EXPECT_EQ(contentOf(backup), embedded::calcDocument);
  std::filesystem::remove(home / "dotfile");
  std::filesystem::remove(file);
  std::filesystem::create_symlink("../../../dotfile", file);
  EXPECT_EQ(run({"use", "calc"}), 0) << "its file is gone, and comes back";
  EXPECT_TRUE(std::filesystem::is_symlink(file));
  EXPECT_EQ(contentOf(home / "dotfile"), embedded::calcDocument);
  std::filesystem::remove(file);
  std::filesystem::create_symlink("mappings.json", file);
  EXPECT_EQ(run({"use", "calc"}), 2) << "it leads to itself";
  EXPECT_THAT(error.str(), HasSubstr("mappings.json: "));
}

}  // namespace
}  // namespace keyvora::tools
