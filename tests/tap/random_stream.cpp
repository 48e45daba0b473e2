#include "tests/tap/random_stream.h"

#include <array>
#include <memory>
#include <optional>
#include <random>
#include <span>
#include <string>
#include <string_view>

#include "platform/key_code.h"
#include "runner/own_event_marker.h"

namespace keyvora::testing {
namespace {

using platform::KeyEvent;
namespace key = platform::key_code;
using namespace platform::event_flag;
using namespace platform::event_type;

constexpr std::array<std::uint16_t, 6> letterKeys{key::a, key::f, key::h, key::x, key::c, key::digit1};
constexpr std::string_view keyCharacters = "aAfFhHcC1 ";
constexpr std::array<std::uint16_t, 5> otherKeys{key::returnKey, key::space, key::escape, key::escape,
                                                 key::leftArrow};
constexpr std::array<std::uint16_t, 8> otherModifiers{key::rightCommand, key::leftCommand, key::leftShift,
                                                      key::capsLock,     key::leftControl, key::rightShift,
                                                      key::rightControl, key::function};
constexpr std::array<std::uint64_t, 5> flagSets{0, shift, control | command, option, option | shift};
constexpr std::array<std::int64_t, 8> timeouts{-5, 0, 1, 250, 250, 800, 1500, 2000};
constexpr std::array<std::int64_t, 9> spans{0,       1,         1'000,     100'000,      250'000,
                                            800'000, 1'499'999, 1'500'000, 3'600'000'000};

class StreamMaker {
 public:
  explicit StreamMaker(const Choose& choose) : choose_(choose) {}

  template <class Values>
  auto of(const Values& values) {
    return values[choose_(std::size(values))];
  }

  Stream make(std::size_t steps) {
    Stream stream;
    stream.mapping = mapping();
    while (stream.steps.size() < steps) addTo(stream.steps);
    return stream;
  }

  KeyEvent anyEvent() {
    KeyEvent event;
    event.type = static_cast<std::uint32_t>(keyDown + choose_(3));
    event.keyCode = oneIn(3)   ? static_cast<std::uint16_t>(choose_(128))
                    : oneIn(3) ? optionKey()
                               : of(letterKeys);
    event.flags = of(flagSets);
    return event;
  }

 private:
  bool oneIn(std::size_t n) { return choose_(n) == 0; }

  std::uint16_t optionKey() { return oneIn(2) ? key::leftOption : key::rightOption; }

  void addTo(std::vector<Step>& steps) {
    const auto chance = choose_(100);
    if (chance < 18) {
      const auto keyCode = optionKey();
      const auto others = oneIn(4) ? shift : 0;
      steps.emplace_back(Event{{flagsChanged, keyCode, option | others, 0}});
      if (oneIn(8)) steps.emplace_back(Event{anyEvent(), !oneIn(4)});
      steps.emplace_back(Event{{flagsChanged, keyCode, others, 0}});
    } else if (chance < 56) {
      const auto keyCode = of(letterKeys);
      const auto flags = oneIn(6) ? of(flagSets) : 0;
      steps.emplace_back(Event{{keyDown, keyCode, flags, 0}});
      if (oneIn(2)) steps.emplace_back(Event{{keyUp, keyCode, flags, 0}});
    } else if (chance < 60) {
      steps.emplace_back(Event{{keyDown, of(otherKeys), 0, 0}});
    } else if (chance < 65) {
      steps.emplace_back(Event{{flagsChanged, of(otherModifiers), of(flagSets), 0}});
    } else if (chance < 70) {
      steps.emplace_back(Event{anyEvent()});
    } else if (chance < 74) {
      steps.emplace_back(Event{anyEvent(), false});
    } else if (chance < 78) {
      auto event = anyEvent();
      event.userData = ownEventMarker;
      steps.emplace_back(Event{event, !oneIn(4)});
    } else if (chance < 80) {
      const auto type = oneIn(2) ? tapDisabledByTimeout : tapDisabledByUserInput;
      steps.emplace_back(Event{{type, 0, of(flagSets), 0}, !oneIn(4)});
    } else if (chance < 93) {
      steps.emplace_back(Advance{of(spans)});
    } else if (chance < 97) {
      steps.emplace_back(Reload{mapping()});
    } else {
      steps.emplace_back(TrackMenu{oneIn(2)});
    }
  }

  Mapping mapping() {
    Mapping mapping;
    if (!oneIn(4)) mapping.timeoutMilliseconds = of(timeouts);
    for (auto count = choose_(7); count > 0; --count) {
      Sequence sequence;
      for (auto length = choose_(5); length > 0; --length) sequence.keys += of(keyCharacters);
      sequence.name = std::to_string(count);
      sequence.action = action();
      mapping.sequences.push_back(std::move(sequence));
    }
    return mapping;
  }

  Action action() {
    switch (choose_(4)) {
      case 0:
        return action::AppleScript{"beep"};
      case 1:
        return action::Keystroke{"f1",
                                 oneIn(2) ? std::vector<std::string>{} : std::vector<std::string>{"cmd"}};
      case 2:
        return action::KeyTips{"hf"};
      default:
        return action::Menu{{"File", "Save"}};
    }
  }

  const Choose& choose_;
};

}  // namespace

Choose randomChoices(std::uint64_t seed) {
  // Not a standard distribution, whose results differ between libraries.
  return [generator = std::mt19937_64(seed)](std::size_t below) mutable { return generator() % below; };
}

Stream makeStream(const Choose& choose, std::size_t steps) {
  return StreamMaker(choose).make(steps);
}

KeyEvent makeEvent(const Choose& choose) {
  return StreamMaker(choose).anyEvent();
}

}  // namespace keyvora::testing
