#include "tests/tap/reference_model.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <map>
#include <utility>

namespace keyvora::testing {
namespace {

using platform::KeyEvent;
using platform::Verdict;

/// The kind of an event, independent of the state.
enum class Kind {
  tapDisabled,
  ours,
  outsideTarget,
  optionDown,
  optionUpAlone,
  optionUpAfterOthers,
  otherModifier,
  keyWithOption,
  keyUp,
  escapeDown,
  letterDown,
  otherKeyDown,
};

/// In milliseconds. A negative wait ends at once; a wait of more than a century never ends.
constexpr std::int64_t shortest = 0;
constexpr std::int64_t longest = 4'000'000'000'000;

enum class Alone { same, yes, no };
enum class Effect { none, enable, arm, disarm, letter };

struct Row {
  Kind kind;
  Alone alone;
  Effect idle;
  Effect armed;
  Verdict armedVerdict;
};

constexpr std::array<Row, 12> rows{{
    // event                    alone after   while idle       while armed      verdict while armed
    {Kind::tapDisabled, Alone::same, Effect::enable, Effect::enable, Verdict::pass},
    {Kind::ours, Alone::same, Effect::none, Effect::none, Verdict::pass},
    {Kind::outsideTarget, Alone::same, Effect::disarm, Effect::disarm, Verdict::pass},
    {Kind::optionDown, Alone::yes, Effect::none, Effect::none, Verdict::pass},
    {Kind::optionUpAlone, Alone::no, Effect::arm, Effect::disarm, Verdict::pass},
    {Kind::optionUpAfterOthers, Alone::same, Effect::none, Effect::none, Verdict::pass},
    {Kind::otherModifier, Alone::no, Effect::none, Effect::none, Verdict::pass},
    {Kind::keyWithOption, Alone::no, Effect::none, Effect::none, Verdict::pass},
    {Kind::keyUp, Alone::same, Effect::none, Effect::none, Verdict::pass},
    {Kind::escapeDown, Alone::same, Effect::none, Effect::disarm, Verdict::swallow},
    {Kind::letterDown, Alone::same, Effect::none, Effect::letter, Verdict::swallow},
    {Kind::otherKeyDown, Alone::same, Effect::none, Effect::disarm, Verdict::pass},
}};

const std::map<std::uint16_t, char>& letters() {
  static const std::map<std::uint16_t, char> table{
      {0, 'A'},  {1, 'S'},  {2, 'D'},  {3, 'F'},  {4, 'H'},  {5, 'G'},  {6, 'Z'},  {7, 'X'},  {8, 'C'},
      {9, 'V'},  {11, 'B'}, {12, 'Q'}, {13, 'W'}, {14, 'E'}, {15, 'R'}, {16, 'Y'}, {17, 'T'}, {18, '1'},
      {19, '2'}, {20, '3'}, {21, '4'}, {22, '6'}, {23, '5'}, {25, '9'}, {26, '7'}, {28, '8'}, {29, '0'},
      {31, 'O'}, {32, 'U'}, {34, 'I'}, {35, 'P'}, {37, 'L'}, {38, 'J'}, {40, 'K'}, {45, 'N'}, {46, 'M'},
  };
  return table;
}

Kind kindOf(const KeyEvent& event, bool targetIsFrontmost, bool alone) {
  const bool option = (event.flags >> 19U & 1U) == 1;
  if (event.type == 0xFFFFFFFE || event.type == 0xFFFFFFFF) return Kind::tapDisabled;
  if (event.userData == 1585091011) return Kind::ours;
  if (!targetIsFrontmost) return Kind::outsideTarget;
  if (event.type == 12) {
    if (event.keyCode != 58 && event.keyCode != 61) return Kind::otherModifier;
    if (option) return Kind::optionDown;
    return alone ? Kind::optionUpAlone : Kind::optionUpAfterOthers;
  }
  if (option) return Kind::keyWithOption;
  if (event.type != 10) return Kind::keyUp;
  if (event.keyCode == 53) return Kind::escapeDown;
  return letters().contains(event.keyCode) ? Kind::letterDown : Kind::otherKeyDown;
}

std::string lettersOf(const std::string& keys) {
  std::string result;
  for (const char c : keys) {
    const auto byte = static_cast<unsigned char>(c);
    if (std::isspace(byte) == 0) result += static_cast<char>(std::toupper(byte));
  }
  return result;
}

}  // namespace

StepResult ReferenceModel::event(const KeyEvent& event, bool targetIsFrontmost) {
  const auto& row = rows.at(static_cast<std::size_t>(kindOf(event, targetIsFrontmost, alone_)));
  const auto verdict = armed_ ? row.armedVerdict : Verdict::pass;
  if (row.alone != Alone::same) alone_ = row.alone == Alone::yes;
  switch (armed_ ? row.armed : row.idle) {
    case Effect::none:
      break;
    case Effect::enable:
      trace_.push_back({"enable"});
      break;
    case Effect::arm:
      arm();
      break;
    case Effect::disarm:
      disarm();
      break;
    case Effect::letter:
      letter(letters().at(event.keyCode));
      break;
  }
  return result(verdict);
}

StepResult ReferenceModel::advance(std::int64_t microseconds) {
  now_ += microseconds;
  runOut();
  return result(std::nullopt);
}

StepResult ReferenceModel::reload(Mapping mapping) {
  mapping_ = std::move(mapping);
  return result(std::nullopt);
}

StepResult ReferenceModel::trackMenu(bool open) {
  menuOpen_ = open;
  return result(std::nullopt);
}

void ReferenceModel::arm() {
  armed_ = true;
  typed_.clear();
  trace_.push_back({"report", "true", ""});
  trace_.push_back({"log", "armed: Option tapped in Excel"});
}

void ReferenceModel::disarm() {
  armed_ = false;
  typed_.clear();
  pending_.reset();
  trace_.push_back({"report", "false", ""});
}

void ReferenceModel::letter(char letter) {
  typed_ += letter;
  trace_.push_back({"report", "true", typed_});
  std::optional<Sequence> exact;
  bool longer = false;
  for (const auto& sequence : mapping_.sequences) {
    const auto keys = lettersOf(sequence.keys);
    if (keys == typed_) exact = sequence;
    if (keys != typed_ && keys.starts_with(typed_)) longer = true;
  }
  pending_.reset();
  if (longer) {
    const auto milliseconds = std::clamp(mapping_.timeoutMilliseconds.value_or(1500), shortest, longest);
    pending_ = Pending{now_ + milliseconds * 1000, exact};
  } else if (exact) {
    fire(*exact);
  } else {
    trace_.push_back({"log", "no sequence " + typed_});
    disarm();
  }
}

void ReferenceModel::fire(const Sequence& sequence) {
  const auto copy = sequence;
  disarm();
  Happening happening{"run"};
  if (const auto* script = std::get_if<action::AppleScript>(&copy.action)) {
    happening.insert(happening.end(), {"applescript", script->script});
  } else if (const auto* keystroke = std::get_if<action::Keystroke>(&copy.action)) {
    happening.insert(happening.end(), {"keystroke", keystroke->key, "["});
    happening.insert(happening.end(), keystroke->modifiers.begin(), keystroke->modifiers.end());
    happening.emplace_back("]");
  } else if (const auto* keyTips = std::get_if<action::KeyTips>(&copy.action)) {
    happening.insert(happening.end(), {"keytips", keyTips->keys});
  } else if (const auto* menu = std::get_if<action::Menu>(&copy.action)) {
    happening.insert(happening.end(), {"menu", "["});
    happening.insert(happening.end(), menu->path.begin(), menu->path.end());
    happening.emplace_back("]");
  }
  happening.push_back(copy.keys + "  " + copy.name);
  trace_.push_back(std::move(happening));
}

void ReferenceModel::runOut() {
  if (menuOpen_ || !pending_ || now_ < pending_->deadline) return;
  const auto sequence = pending_->sequence;
  if (sequence) {
    fire(*sequence);
  } else {
    disarm();
  }
}

StepResult ReferenceModel::result(std::optional<Verdict> verdict) {
  return {verdict, std::exchange(trace_, {})};
}

}  // namespace keyvora::testing
