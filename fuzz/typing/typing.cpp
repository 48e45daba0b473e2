// Key tips and keystrokes of any text, with events that cannot be made: events, pauses and log lines must
// follow from the key-code table.

#include <algorithm>

#include "fuzz/input.h"
#include "hosts/simulated/host.h"
#include "platform/key_code.h"
#include "platform/platform.h"
#include "runner/key_names.h"
#include "runner/key_plan.h"
#include "runner/own_event_marker.h"
#include "runner/runner.h"
#include "text/text.h"

namespace keyvora::fuzz {
namespace {

using simulated::trace::Posted;
using simulated::trace::Slept;
namespace key_code = platform::key_code;
using namespace platform::event_flag;
using namespace platform::event_type;

constexpr platform::ProcessIdentifier process = 77;
const std::string label = "H F  label";

/// The characters to type: upper-case, without white space.
std::string withoutWhiteSpace(const std::string& keys) {
  std::string result;
  for (const auto& character : text::characters(text::upperCased(keys))) {
    if (!text::isWhiteSpace(character)) result += character;
  }
  return result;
}

std::optional<std::uint16_t> codeOf(const std::string& name) {
  const auto found = std::ranges::find(keyNames, text::lowerCased(name), &KeyName::name);
  if (found == keyNames.end()) return std::nullopt;
  return found->code;
}

class Typing {
 public:
  explicit Typing(FuzzedDataProvider& input)
      : running_(input.ConsumeBool()), missing_(input.ConsumeIntegral<std::uint8_t>()) {
    if (running_) host_.applications.start("com.microsoft.Excel", process);
    host_.failures.event(missing_, missing_ % 2 == 0);
  }

  void keyTips(const std::string& keys) {
    runner_.sendKeyTips(keys, label);
    host_.advance(1000);
    const auto cleaned = withoutWhiteSpace(keys);
    const auto characters = text::characters(cleaned);
    for (const auto& character : characters) {
      if (codeOf(character)) continue;
      logs(label + " FAILED: no key code for " + character);
      return posts({}, {});
    }
    std::vector<Posted> events;
    for (const auto& [code, flags, down] :
         std::initializer_list<std::tuple<std::uint16_t, std::uint64_t, bool>>{
             {key_code::leftShift, shift, true},
             {key_code::leftOption, shift | option, true},
             {key_code::leftOption, shift, false},
             {key_code::leftShift, 0, false}}) {
      if (canMake(code, down)) events.push_back(event(flagsChanged, code, flags));
    }
    std::vector<Slept> pauses{{std::chrono::milliseconds(150)}};
    for (const auto& character : characters) {
      const auto code = *codeOf(character);
      if (!canMake(code, true) || !canMake(code, false)) continue;
      events.push_back(event(keyDown, code, 0));
      events.push_back(event(keyUp, code, 0));
      pauses.push_back({std::chrono::milliseconds(80)});
    }
    posts(events, pauses);
    logs(label + " (keytips " + keys + ")");
  }

  void keystroke(const std::string& key, const std::vector<std::string>& modifiers) {
    runner_.sendKeystroke(key, modifiers, label);
    const auto code = codeOf(key);
    if (!code) {
      logs(label + " FAILED: no key code for " + key);
      return posts({}, {});
    }
    if (!canMake(*code, true) || !canMake(*code, false)) {
      require(host_.trace.logged().empty(), "a keystroke that cannot be made ends without a word");
      return posts({}, {});
    }
    std::uint64_t flags = 0;
    for (const auto& each : modifiers) {
      const auto name = text::lowerCased(each);
      if (name == "command" || name == "cmd") flags |= command;
      if (name == "option" || name == "alt") flags |= option;
      if (name == "control" || name == "ctrl") flags |= control;
      if (name == "shift") flags |= shift;
    }
    posts({event(keyDown, *code, flags), event(keyUp, *code, flags)}, {});
    logs(label + " (keystroke)");
  }

 private:
  [[nodiscard]] bool canMake(std::uint16_t code, bool down) const {
    return code != missing_ || down != (missing_ % 2 == 0);
  }

  [[nodiscard]] Posted event(std::uint32_t type, std::uint16_t code, std::uint64_t flags) const {
    return {running_ ? std::optional(process) : std::nullopt, {type, code, flags, ownEventMarker}};
  }

  void posts(const std::vector<Posted>& events, const std::vector<Slept>& pauses) const {
    require(host_.trace.of<Posted>() == events, "the events that the table says");
    require(host_.trace.of<Slept>() == pauses, "the pauses that belong to them");
  }

  void logs(const std::string& line) const {
    require(host_.trace.logged() == std::vector{line}, "one line says how it ended");
  }

  simulated::Host host_;
  platform::Scope scope_{host_.platform()};
  Runner runner_;
  bool running_;
  std::uint16_t missing_;
};

}  // namespace
}  // namespace keyvora::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace keyvora;
  FuzzedDataProvider input(data, size);
  const bool keyTips = input.ConsumeBool();
  fuzz::Typing typing(input);
  if (keyTips) {
    typing.keyTips(input.ConsumeBool() ? fuzz::someText(input, 100) : input.ConsumeRemainingBytesAsString());
    return 0;
  }
  static const std::string names[] = {"cmd", "Command", "SHIFT", "alt", " cmd", "ctrl",
                                      "f1",  "Return",  "esc",   "",    "K"};
  const auto some = [&input] {
    if (input.ConsumeBool()) return input.ConsumeRandomLengthString(8);
    return names[input.ConsumeIntegralInRange<std::size_t>(0, std::size(names) - 1)];
  };
  const auto key = some();
  std::vector<std::string> modifiers;
  for (auto left = input.ConsumeIntegralInRange(0, 5); left > 0; --left) modifiers.push_back(some());
  typing.keystroke(key, modifiers);
  return 0;
}
