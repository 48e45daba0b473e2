#include "tools/layouts.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <optional>
#include <utility>
#include <variant>
#include <vector>

#include "mapping/document_keys.h"
#include "runner/key_names.h"
#include "runner/key_plan.h"
#include "runner/modifiers.h"
#include "text/text.h"
#include "tools/letters.h"
#include "tools/spelling.h"
#include "tools/wording.h"

namespace keyvora::tools {
namespace {

using platform::KeyboardLayout;

constexpr std::string_view ruleName = "layout";

/// A press of a key: with Shift or without it.
struct Press {
  std::uint16_t code = 0;
  bool withShift = false;
};

std::string typed(const KeyboardLayout& layout, Press press) {
  const auto key = layout.find(press.code);
  if (key == layout.end()) return {};
  return press.withShift ? key->second.withShift : key->second.alone;
}

/// Applications ignore case in shortcuts and key tips.
bool isSame(const std::string& one, const std::string& other) {
  return text::lowerCased(one) == text::lowerCased(other);
}

/// The name of a key that types this; none when actions cannot press such a key. Names of several letters
/// belong to keys that are the same in all layouts.
std::optional<std::string> keyThatTypes(const std::string& character, const KeyboardLayout& layout,
                                        bool withShift) {
  for (const auto& key : keyNames) {
    if (key.name.size() == 1 && isSame(typed(layout, {key.code, withShift}), character)) {
      return std::string(key.name);
    }
  }
  return std::nullopt;
}

std::string inWords(const std::string& typed) {
  return typed.empty() ? "nothing" : inQuotes(typed);
}

std::string oneByOne(const std::vector<std::string>& parts) {
  std::string all;
  for (const auto& part : parts) all += (all.empty() ? "" : " ") + (part.empty() ? "?" : part);
  return inQuotes(all);
}

/// Compares the sequences of a document with one layout.
class Comparison {
 public:
  Comparison(const NamedLayout& layout, const KeyboardLayout& us, Findings& findings)
      : layout_(layout.keys), us_(us), where_("under " + layout.name + " "), findings_(findings) {
    for (const auto& key : keyNames) {
      const auto letter = text::upperCased(key.name);
      if (!keyTyping(letter)) continue;
      labels_[letter] = labelOf(letter);
      letters_.try_emplace(labels_[letter], letter);
    }
  }

  void operator()(const Entry& entry) {
    compareLetters(entry);
    if (const auto* keystroke = std::get_if<action::Keystroke>(&entry.sequence.action)) {
      compare(entry, *keystroke);
    } else if (const auto* keyTips = std::get_if<action::KeyTips>(&entry.sequence.action)) {
      compare(entry, *keyTips);
    }
  }

 private:
  /// The label of the key that types this letter on a US keyboard. In some layouts digits need Shift.
  [[nodiscard]] std::string labelOf(const std::string& letter) const {
    const auto code = *keyTyping(letter);
    if (isSame(typed(layout_, {code, true}), letter)) return letter;
    return text::upperCased(typed(layout_, {code, false}));
  }

  void compareLetters(const Entry& entry) {
    if (entry.letters.empty() || firstUntypable(entry.letters)) return;
    std::vector<std::string> labels;
    std::ranges::transform(entry.letters, std::back_inserter(labels),
                           [this](const auto& letter) { return labels_.at(letter); });
    if (labels == entry.letters) return;
    std::string written;
    std::string remedy;
    for (const auto& letter : entry.letters) {
      const auto other = letters_.find(letter);
      if (other != letters_.end()) {
        written += other->second;
      } else if (remedy.empty()) {
        remedy = "no key of a sequence is labelled " + inQuotes(letter) + " there";
      }
    }
    if (remedy.empty()) {
      remedy = "for the keys labelled " + oneByOne(entry.letters) + " write " + inQuotes(written);
    }
    warn(findings_, ruleName, entry.value(key::keys), entry.path(key::keys),
         where_ + "this is typed on the keys labelled " + oneByOne(labels) + "; " + remedy);
  }

  void compare(const Entry& entry, const action::Keystroke& keystroke) {
    const auto code = keyCodeFor(keystroke.key);
    if (!code || keystroke.key.size() > 1) return;
    const bool withShift = (modifierFlags(keystroke.modifiers) & platform::event_flag::shift) != 0;
    const auto meant = typed(us_, {*code, withShift});
    const auto real = typed(layout_, {*code, withShift});
    if (isSame(meant, real)) return;
    warn(findings_, ruleName, entry.actionValue(key::key), entry.actionPath(key::key),
         where_ + "this key " + (withShift ? "with Shift " : "") + "types " + inWords(real) + ", not " +
             inWords(meant) + "; " + remedyFor(meant, withShift));
  }

  [[nodiscard]] std::string remedyFor(const std::string& meant, bool withShift) const {
    const auto start = "to type " + inQuotes(meant) + " write ";
    if (const auto key = keyThatTypes(meant, layout_, withShift)) return start + inQuotes(*key);
    if (const auto key = keyThatTypes(meant, layout_, !withShift)) {
      return start + inQuotes(*key) + (withShift ? " without" : " with") + " \"shift\"";
    }
    return "no key types " + inQuotes(meant) + " there: use another kind of action";
  }

  void compare(const Entry& entry, const action::KeyTips& keyTips) {
    const auto plan = keyPlan(keyTips.keys);
    if (firstWithoutKey(plan)) return;
    std::vector<std::string> meant;
    std::vector<std::string> real;
    std::string written;
    std::string remedy;
    for (const auto& [character, code] : plan) {
      meant.push_back(character);
      real.push_back(text::upperCased(typed(layout_, {code, false})));
      const auto key = keyThatTypes(character, layout_, false);
      if (!key && remedy.empty()) {
        remedy = "no key types " + inQuotes(character) + " there without Shift: use another kind of action";
      }
      written += text::upperCased(key.value_or(""));
    }
    if (meant == real) return;
    if (remedy.empty()) remedy = "to type " + oneByOne(meant) + " write " + inQuotes(written);
    warn(findings_, ruleName, entry.actionValue(key::keys), entry.actionPath(key::keys),
         where_ + "these keys type " + oneByOne(real) + ", not " + oneByOne(meant) + "; " + remedy);
  }

  const KeyboardLayout& layout_;
  const KeyboardLayout& us_;
  std::string where_;
  /// The label of each letter's key, and the letters by their keys' labels.
  std::map<std::string, std::string> labels_;
  std::map<std::string, std::string> letters_;
  Findings& findings_;
};

std::string unknownLayout(std::string_view name, const std::vector<std::string>& examples) {
  std::string known;
  for (const auto& each : examples) known += (known.empty() ? "" : ", ") + each;
  return "no keyboard layout is called " + inQuotes(name) + "; there are " + known +
         " and others, by the names that setxkbmap takes";
}

}  // namespace

std::variant<ChosenLayouts, std::string> chooseLayouts(std::string_view names, const HostOnce& hostOnce) {
  const auto* host = hostOnce.get();
  const auto examples =
      host == nullptr ? std::vector<std::string>() : host->platform().keyboard.commonLayouts();
  if (examples.empty()) return "this build knows no keyboard layouts; on Linux there are those of the system";
  auto& keyboard = host->platform().keyboard;
  auto us = keyboard.layout("us");
  if (!us) return unknownLayout("us", examples);
  ChosenLayouts chosen{{}, std::move(*us)};
  for (bool more = true; more;) {
    const auto comma = names.find(',');
    const std::string name(trimmed(names.substr(0, comma)));
    auto layout = keyboard.layout(name);
    if (!layout) return unknownLayout(name, examples);
    chosen.layouts.push_back({name, std::move(*layout)});
    more = comma != std::string_view::npos;
    names.remove_prefix(more ? comma + 1 : names.size());
  }
  return chosen;
}

void compareWithLayouts(const Document& document, const ChosenLayouts& chosen, Findings& findings) {
  for (const auto& layout : chosen.layouts) {
    Comparison comparison(layout, chosen.us, findings);
    for (const auto& entry : document.entries()) comparison(entry);
  }
}

}  // namespace keyvora::tools
