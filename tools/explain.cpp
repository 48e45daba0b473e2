#include "tools/explain.h"

#include <algorithm>
#include <optional>
#include <span>
#include <utility>

#include "tools/continuations.h"
#include "tools/letters.h"
#include "tools/rehearsal.h"
#include "tools/wording.h"

namespace keyvora::tools {
namespace {

using Letters = std::span<const std::string>;

std::string label(const Sequence& sequence) {
  return sequence.keys + "  " + sequence.name;
}

/// Writes the lines of an explanation: a key, or a time, and its effect.
class Telling {
 public:
  explicit Telling(const Mapping& mapping) : mapping_(mapping) {}

  void key(const std::string& name, const std::string& what) {
    constexpr std::size_t width = 8;
    text_ += name + std::string(width > name.size() ? width - name.size() : 1, ' ') + what + "\n";
  }

  void more(const std::string& what) { key("", what); }

  /// A letter that the tap swallowed. After the last one, lists each letter that may follow.
  void letter(Letters typed, const Step& step, bool isLast) {
    const auto match = mapping_.lookup(typed);
    const auto& name = typed.back();
    if (step.fired) {
      key(name, "fires " + label(*match.exact));
      action(*match.exact, step);
    } else if (!step.armed) {
      key(name, "swallowed; nothing starts with " + joined(typed));
      log(step);
    } else {
      const auto next = continuationsOf(typed, mapping_);
      const auto count = counted(sequencesIn(next), match.exact == nullptr ? "sequence" : "longer sequence");
      key(name, match.exact == nullptr ? "goes on to " + count
                                       : "waits " + inSeconds(mapping_.timeout()) + " with " +
                                             label(*match.exact) + "; goes on to " + count);
      if (!isLast) return;
      for (const auto& line : asLines(next, typed.size())) more("  " + line);
    }
  }

  /// The wait after the last letter.
  void wait(Letters typed, std::chrono::milliseconds time, const Step& step) {
    const auto match = mapping_.lookup(typed);
    const std::string after = "after " + inSeconds(time) + " without another letter: ";
    if (step.fired) {
      more(after + "fires " + label(*match.exact));
      action(*match.exact, step);
    } else {
      more(after + "gives up; nothing fires");
    }
  }

  [[nodiscard]] const std::string& text() const { return text_; }

 private:
  void action(const Sequence& sequence, const Step& step) {
    if (const auto* script = std::get_if<action::AppleScript>(&sequence.action)) {
      more("applescript:");
      std::string_view rest = script->script;
      while (!rest.empty()) {
        const auto end = rest.find('\n');
        more("  " + std::string(rest.substr(0, end)));
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
      }
    } else {
      more(std::string(kindOf(sequence.action)) + ": " + summary(sequence.action));
    }
    log(step);
  }

  void log(const Step& step) {
    for (const auto& line : step.logged) more("log: " + line);
  }

  const Mapping& mapping_;
  std::string text_;
};

}  // namespace

Explanation explain(const std::vector<std::string>& letters, const Mapping& mapping) {
  Rehearsal rehearsal(mapping);
  Telling telling(mapping);
  telling.key("Option", rehearsal.tapOption().armed ? "armed" : "not armed");
  std::size_t taken = 0;
  bool fires = false;
  bool collecting = true;
  for (const auto& letter : letters) {
    const auto step = rehearsal.type(letter);
    if (!collecting) {
      telling.key(letter, step.swallowed ? "swallowed" : "reaches Excel: the sequence is over");
      continue;
    }
    ++taken;
    telling.letter(Letters(letters).first(taken), step, taken == letters.size());
    collecting = step.armed;
    fires = fires || step.fired;
  }
  if (const auto waited = rehearsal.wait()) {
    telling.wait(Letters(letters).first(taken), waited->first, waited->second);
    fires = fires || waited->second.fired;
  }
  return {telling.text(), fires};
}

}  // namespace keyvora::tools
