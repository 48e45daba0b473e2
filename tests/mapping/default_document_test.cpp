#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <set>
#include <stdexcept>
#include <utility>
#include <variant>

#include "hosts/simulated/host.h"
#include "mapping/decode.h"
#include "platform/key_code.h"
#include "platform/platform.h"
#include "runner/excel.h"
#include "runner/key_names.h"
#include "runner/key_plan.h"
#include "runner/modifiers.h"
#include "runner/own_event_marker.h"
#include "runner/runner.h"
#include "tap/key_sequence_tap.h"
#include "tools/menu_bar.h"

/// Properties of the document that a new user gets.
namespace keyvora {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

const Mapping& document() {
  static const Mapping mapping = [] {
    std::ifstream file(KEYVORA_DEFAULT_DOCUMENT, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    auto decoded = decode(bytes);
    if (const auto* error = std::get_if<DecodingError>(&decoded)) ADD_FAILURE() << error->description;
    return std::get<Mapping>(std::move(decoded));
  }();
  return mapping;
}

/// The sequences with one kind of action, and the actions.
template <class Kind>
std::vector<std::pair<const Sequence*, const Kind*>> ofKind() {
  std::vector<std::pair<const Sequence*, const Kind*>> found;
  for (const auto& sequence : document().sequences) {
    if (const auto* action = std::get_if<Kind>(&sequence.action)) found.emplace_back(&sequence, action);
  }
  return found;
}

const Sequence& sequenceFor(const std::string& keys) {
  const auto found = std::ranges::find(document().sequences, keys, &Sequence::keys);
  if (found == document().sequences.end()) throw std::runtime_error("no sequence " + keys);
  return *found;
}

std::optional<std::uint16_t> keyTyping(const std::string& letter) {
  for (std::uint16_t code = 0; code < platform::key_code::count; ++code) {
    if (const auto typed = KeySequenceTap::letterFor(code); typed && letter == std::string(1, *typed))
      return code;
  }
  return std::nullopt;
}

TEST(DefaultDocumentTest, HoldsEnoughToBeWorthHavingOnTheFirstDay) {
  EXPECT_EQ(document().version, 1);
  EXPECT_GE(document().sequences.size(), 280U);
  EXPECT_GE(ofKind<action::AppleScript>().size(), 19U);
  EXPECT_FALSE(ofKind<action::Keystroke>().empty());
  EXPECT_FALSE(ofKind<action::Menu>().empty());
  EXPECT_EQ(document().timeoutMilliseconds, 1500);
}

TEST(DefaultDocumentTest, EverySequenceCanBeTypedAndFewAreInAnothersWay) {
  std::set<std::string> waiting;
  std::set<std::vector<std::string>> all;
  for (const auto& sequence : document().sequences) {
    const auto letters = sequence.letters();
    EXPECT_FALSE(letters.empty());
    for (const auto& letter : letters) EXPECT_TRUE(keyTyping(letter)) << sequence.keys;
    EXPECT_TRUE(all.insert(letters).second) << sequence.keys << " stands twice";
  }
  for (const auto& letters : all) {
    const auto match = document().lookup(letters);
    ASSERT_NE(match.exact, nullptr);
    if (match.isPrefixOfLonger) waiting.insert(match.exact->keys);
  }
  EXPECT_THAT(waiting, ElementsAre("ES", "HH", "MK", "NV")) << "on Windows they begin longer ones, too";
}

TEST(DefaultDocumentTest, EveryNameIsClear) {
  for (const auto& sequence : document().sequences) {
    EXPECT_GE(sequence.name.size(), 3U) << sequence.keys;
    EXPECT_LE(sequence.name.size(), 40U) << sequence.keys;
    EXPECT_TRUE(sequence.name.front() >= 'A' && sequence.name.front() <= 'Z') << sequence.name;
    EXPECT_EQ(sequence.keys, [&] {
      std::string joined;
      for (const auto& letter : sequence.letters()) joined += letter;
      return joined;
    }());
  }
}

TEST(DefaultDocumentTest, TabsAreTheRibbonsAndStandTogether) {
  const std::pair<const char*, const char*> ribbon[] = {
      {"F", "File"},     {"H", "Home"}, {"N", "Insert"}, {"P", "Page Layout"},
      {"M", "Formulas"}, {"A", "Data"}, {"R", "Review"}, {"W", "View"}};
  for (const auto& [letter, name] : ribbon) EXPECT_EQ(document().tabs.at(letter), name);
  std::vector<std::string> order;
  for (const auto& sequence : document().sequences) {
    const auto tab = sequence.letters().front();
    EXPECT_TRUE(document().tabs.contains(tab)) << sequence.keys;
    if (order.empty() || order.back() != tab) order.push_back(tab);
  }
  EXPECT_EQ(std::set(order.begin(), order.end()).size(), order.size()) << "a tab's sequences are scattered";
  EXPECT_EQ(order.size(), document().tabs.size()) << "a tab has no sequence";
}

TEST(DefaultDocumentTest, EveryKeyAndModifierIsKnown) {
  for (const auto& [sequence, keystroke] : ofKind<action::Keystroke>()) {
    EXPECT_TRUE(keyCodeFor(keystroke->key)) << sequence->keys;
    for (const auto& modifier : keystroke->modifiers) EXPECT_TRUE(modifierFlag(modifier)) << sequence->keys;
  }
}

TEST(DefaultDocumentTest, TheNotesTeachTheFormat) {
  ASSERT_TRUE(document().notes);
  std::string notes;
  for (const auto& note : *document().notes) notes += note + "\n";
  for (const auto* term : {"keys", "name", "action", "keystroke", "menu", "applescript", "keytips",
                           "modifiers", "path", "timeoutMilliseconds", "Option"}) {
    EXPECT_THAT(notes, HasSubstr(term));
  }
}

TEST(DefaultDocumentTest, MenuTitlesAreWrittenAsExcelWritesThem) {
  for (const auto& [sequence, menu] : ofKind<action::Menu>()) {
    EXPECT_GE(menu->path.size(), 2U) << sequence->keys;
    EXPECT_THAT(menu->path, Each(Not(IsEmpty()))) << sequence->keys;
    EXPECT_THAT(menu->path, Each(Not(HasSubstr("…")))) << sequence->keys;
    EXPECT_THAT(menu->path, Each(Not(testing::StartsWith(" ")))) << sequence->keys;
    EXPECT_THAT(menu->path, Each(Not(testing::EndsWith(" ")))) << sequence->keys;
  }
}

TEST(DefaultDocumentTest, TogglesToggle) {
  // Commands that are toggles on Windows: a key that toggles in Excel, or a script that reads the state and
  // sets the other one.
  const std::pair<const char*, action::Keystroke> toggling[] = {
      {"H1", {"b", {"command"}}},          {"H2", {"i", {"command"}}},           {"H3U", {"u", {"command"}}},
      {"AT", {"f", {"command", "shift"}}}, {"HSF", {"f", {"command", "shift"}}},
  };
  for (const auto& [sequence, keystroke] : toggling)
    EXPECT_EQ(sequenceFor(sequence).action, Action(keystroke));
  for (const auto* keys : {"HW", "HOL", "WFF", "WVG", "WVH", "WS", "PVG", "PVH", "PPG", "PPH"}) {
    EXPECT_THAT(std::get<action::AppleScript>(sequenceFor(keys).action).script, HasSubstr(" to not "))
        << keys;
  }
  for (const auto* keys : {"HAR", "HMC"}) {
    const auto& script = std::get<action::AppleScript>(sequenceFor(keys).action).script;
    EXPECT_THAT(script, testing::StartsWith("if (")) << keys;
    EXPECT_THAT(script, HasSubstr("\nelse\n")) << keys;
  }
}

TEST(DefaultDocumentTest, ScriptsGuardWhatRaisesAndWaitForNoDialog) {
  struct Guard {
    const char* term;
    const char* guard;
  };
  const Guard guards[] = {
      {"special cells", "try\n"},
      {"format condition", "try\n"},
      {"inside horizontal", "try\n"},
      {"insert amount -1", "> 0 then"},
      {"insert amount 1", "< 15 then"},
      {"sheet hidden", "try\n"},
      {"get dialog", "ignoring application responses\n"},
      {"delete active sheet", "ignoring application responses\n"},
      // Excel may ask, or data may come from far.
      {" merge selection", "ignoring application responses\n"},
      {"auto outline", "ignoring application responses\n"},
      {"refresh all", "ignoring application responses\n"},
      // Rows that a filter hides would be changed with the others, and Excel does not undo a script.
      {"delete range (entire row", "if filter mode of active sheet then error "},
      {"fill up", "if filter mode of active sheet then error "},
      {"fill left", "if filter mode of active sheet then error "},
  };
  for (const auto& [term, guard] : guards) {
    std::size_t uses = 0;
    for (const auto& [sequence, action] : ofKind<action::AppleScript>()) {
      if ((" " + action->script).find(term) == std::string::npos) continue;
      ++uses;
      EXPECT_THAT(action->script, HasSubstr(guard)) << sequence->keys;
    }
    EXPECT_GT(uses, 0U) << term;
  }
  for (const auto& [sequence, action] : ofKind<action::AppleScript>()) {
    EXPECT_THAT(action->script, Not(HasSubstr("display alerts"))) << sequence->keys;
    EXPECT_THAT(action->script, Not(testing::StartsWith("tell application"))) << sequence->keys;
    EXPECT_THAT(action->script, Not(HasSubstr("range selection of"))) << sequence->keys;
  }
}

TEST(DefaultDocumentTest, AWrongGuessDoesNoHarm) {
  // With key tips disabled, which is Excel's default, their letters would be typed into the cell.
  EXPECT_THAT(ofKind<action::KeyTips>(), IsEmpty());
  for (const auto& [sequence, action] : ofKind<action::AppleScript>()) {
    // A script would sort a column without the rest of its table, or protect a sheet without asking; Excel
    // cannot undo either.
    EXPECT_THAT(action->script, Not(HasSubstr("sort "))) << sequence->keys;
    EXPECT_THAT(action->script, Not(HasSubstr("protect"))) << sequence->keys;
  }
  // Windows users press Enter after these, which pastes everything again if cells are still marked for
  // copying.
  for (const auto* keys : {"ESV", "EST", "ESF", "ESE", "ESW"}) {
    const auto& script = std::get<action::AppleScript>(sequenceFor(keys).action).script;
    EXPECT_THAT(script, testing::MatchesRegex("paste special [^\n]*\ntry\n[^\n]*set cut copy mode to "
                                              "false[^\n]*\nend try"))
        << keys;
  }
}

TEST(DefaultDocumentTest, ExcelCanUndoWhatHasAKeyOrAMenuItem) {
  for (const auto* keys : {"HAL", "HAC", "HAN", "HP", "HK", "HOUR", "HOUC", "HOUO", "HOUL"}) {
    EXPECT_TRUE(std::holds_alternative<action::Keystroke>(sequenceFor(keys).action)) << keys;
  }
  for (const auto* keys : {"HIR", "HIC", "IR", "IC", "HSC", "AC", "DFS", "WVF", "PI", "RD"}) {
    EXPECT_TRUE(std::holds_alternative<action::Menu>(sequenceFor(keys).action)) << keys;
  }
}

TEST(DefaultDocumentTest, ADialogThatHasAKeyIsOpenedByIt) {
  // A menu item that opens a dialog may hold the keyboard until the dialog is closed; a key does not wait.
  const std::vector<std::string> haveKeys[] = {
      {"Data", "AutoFilter"},       {"Data", "Sort..."},       {"Edit", "Delete..."},
      {"Edit", "Paste Special..."}, {"File", "Open..."},       {"File", "Print..."},
      {"File", "Save As..."},       {"Format", "Cells..."},    {"Format", "Style..."},
      {"Insert", "Cells..."},       {"Insert", "Function..."}, {"Insert", "New Comment"},
      {"Insert", "Table"},          {"Tools", "Spelling..."},  {"Tools", "Thesaurus..."},
  };
  for (const auto& [sequence, menu] : ofKind<action::Menu>()) {
    EXPECT_THAT(haveKeys, Not(testing::Contains(menu->path))) << sequence->keys;
  }
}

/// Excel in front with the menus named in the document, and the real tap and runner.
struct DefaultDocumentInUse : testing::Test {
  static constexpr platform::ProcessIdentifier excel = 77;

  DefaultDocumentInUse() {
    host.applications.start(std::string(Excel::bundleIdentifier), excel);
    host.applications.front = Excel::bundleIdentifier;
    host.queues.walking = simulated::Queues::Walking::inLine;
    host.accessibility.setMenuBar(excel, tools::menuBarFor(document(), host.accessibility));
    EXPECT_TRUE(tap.install());
  }

  /// The expected effects of a sequence on the system, and its log line.
  static std::vector<simulated::TraceEntry> deeds(const Sequence& sequence) {
    using namespace simulated::trace;
    std::vector<simulated::TraceEntry> expected;
    if (const auto* script = std::get_if<action::AppleScript>(&sequence.action)) {
      expected.push_back(ScriptRun{"tell application \"Microsoft Excel\"\n" + script->script + "\nend tell"});
    } else if (const auto* menu = std::get_if<action::Menu>(&sequence.action)) {
      std::string path;
      for (const auto& title : menu->path) path += "/" + title;
      expected.push_back(Performed{path, "AXPress"});
    } else if (const auto* keystroke = std::get_if<action::Keystroke>(&sequence.action)) {
      for (const auto type : {platform::event_type::keyDown, platform::event_type::keyUp}) {
        expected.push_back(Posted{
            excel,
            {type, keyCodeFor(keystroke->key).value(), modifierFlags(keystroke->modifiers), ownEventMarker}});
      }
    } else if (const auto* keyTips = std::get_if<action::KeyTips>(&sequence.action)) {
      const std::pair<std::uint16_t, std::uint64_t> leadIn[] = {
          {56, 0x20000}, {58, 0xA0000}, {58, 0x20000}, {56, 0}};
      for (const auto& [code, flags] : leadIn) {
        expected.push_back(Posted{excel, {platform::event_type::flagsChanged, code, flags, ownEventMarker}});
      }
      for (const auto& key : keyPlan(keyTips->keys)) {
        for (const auto type : {platform::event_type::keyDown, platform::event_type::keyUp}) {
          expected.push_back(Posted{excel, {type, key.code, 0, ownEventMarker}});
        }
      }
    }
    return expected;
  }

  static std::string outcome(const Sequence& sequence) {
    const auto label = sequence.keys + "  " + sequence.name;
    if (std::holds_alternative<action::AppleScript>(sequence.action)) return label + " (applescript)";
    if (std::holds_alternative<action::Keystroke>(sequence.action)) return label + " (keystroke)";
    if (std::holds_alternative<action::Menu>(sequence.action)) return label + " (menu)";
    return label + " (keytips " + std::get<action::KeyTips>(sequence.action).keys + ")";
  }

  /// The effects on the system since the trace was cleared, without the log, the tap and the pauses.
  std::vector<simulated::TraceEntry> done() {
    auto entries = host.trace.entries();
    std::erase_if(entries, [](const simulated::TraceEntry& entry) {
      using namespace simulated::trace;
      return std::holds_alternative<Console>(entry) || std::holds_alternative<Slept>(entry) ||
             std::holds_alternative<TapEnabled>(entry);
    });
    return entries;
  }

  simulated::Host host;
  platform::Scope scope{host.platform()};
  Runner runner;
  KeySequenceTap tap{[]() -> const Mapping& { return document(); }, runner};
};

TEST_F(DefaultDocumentInUse, EverySequenceDoesItsOwnActionAndNothingElse) {
  for (const auto& sequence : document().sequences) {
    host.trace.clear();
    host.keyboard.tapOption();
    const auto letters = sequence.letters();
    for (const auto& letter : letters) {
      EXPECT_THAT(done(), IsEmpty()) << sequence.keys << " fires before its last letter";
      EXPECT_EQ(host.keyboard.type(keyTyping(letter).value()), platform::Verdict::swallow) << sequence.keys;
    }
    if (document().lookup(letters).isPrefixOfLonger) {
      EXPECT_THAT(done(), IsEmpty()) << sequence.keys << " could go on";
      host.advance(1.5);
    }
    EXPECT_EQ(done(), deeds(sequence)) << sequence.keys;
    host.advance(10);
    EXPECT_EQ(done(), deeds(sequence)) << sequence.keys << " does something more later";
    EXPECT_THAT(host.trace.logged(), ElementsAre("armed: Option tapped in Excel", outcome(sequence)));
  }
}

}  // namespace
}  // namespace keyvora
