#include "tests/tap/tap_rig.h"

#include <utility>

#include "platform/key_code.h"

namespace keyvora::testing {

namespace event_flag = platform::event_flag;
namespace event_type = platform::event_type;
namespace trace = simulated::trace;

class TapRig::NotingRunner final : public Runner {
 public:
  explicit NotingRunner(TapRig& rig) : rig_(rig) {}

  void sendKeyTips(const std::string& keys, const std::string& name) override {
    rig_.note({"run", "keytips", keys, name});
  }

  void sendKeystroke(const std::string& key, const std::vector<std::string>& modifiers,
                     const std::string& name) override {
    noteList({"run", "keystroke", key}, modifiers, name);
  }

  void runAppleScript(const std::string& script, const std::string& name) override {
    rig_.note({"run", "applescript", script, name});
  }

  void clickMenu(const std::vector<std::string>& path, const std::string& name) override {
    noteList({"run", "menu"}, path, name);
  }

 private:
  void noteList(Happening happening, const std::vector<std::string>& list, const std::string& name) {
    happening.emplace_back("[");
    happening.insert(happening.end(), list.begin(), list.end());
    happening.emplace_back("]");
    happening.push_back(name);
    rig_.note(std::move(happening));
  }

  TapRig& rig_;
};

TapRig::TapRig(Mapping mapping)
    : scope_(host_.platform()),
      mapping_(std::move(mapping)),
      runner_(std::make_unique<NotingRunner>(*this)),
      tap_(std::make_unique<KeySequenceTap>([this]() -> const Mapping& { return mapping_; }, *runner_)) {
  host_.applications.start("com.microsoft.Excel", 77);
  tap_->onStateChange = [this](bool armed, const std::string& text) {
    note({"report", armed ? "true" : "false", text});
  };
  tap_->install();
  host_.trace.clear();
}

StepResult TapRig::event(const platform::KeyEvent& event, bool targetIsFrontmost) {
  host_.applications.front = targetIsFrontmost ? "com.microsoft.Excel" : "com.apple.finder";
  return result(host_.keyboard.send(event));
}

StepResult TapRig::advance(std::int64_t microseconds) {
  host_.advance(static_cast<double>(microseconds) / 1e6);
  return result(std::nullopt);
}

StepResult TapRig::reload(Mapping mapping) {
  mapping_ = std::move(mapping);
  return result(std::nullopt);
}

StepResult TapRig::trackMenu(bool open) {
  host_.mainLoop.menuTracking = open;
  return result(std::nullopt);
}

StepResult TapRig::keyDown(std::uint16_t keyCode, std::uint64_t flags) {
  return event({event_type::keyDown, keyCode, flags, 0}, true);
}

StepResult TapRig::keyUp(std::uint16_t keyCode, std::uint64_t flags) {
  return event({event_type::keyUp, keyCode, flags, 0}, true);
}

StepResult TapRig::flagsChanged(std::uint16_t keyCode, std::uint64_t flags) {
  return event({event_type::flagsChanged, keyCode, flags, 0}, true);
}

StepResult TapRig::tapOption() {
  flagsChanged(platform::key_code::leftOption, event_flag::option);
  return flagsChanged(platform::key_code::leftOption, 0);
}

void TapRig::collect() {
  for (const auto& entry : host_.trace.take()) {
    if (const auto* console = std::get_if<trace::Console>(&entry)) {
      trace_.push_back({"log", std::string(simulated::messageOf(*console))});
    } else if (std::holds_alternative<trace::TapEnabled>(entry)) {
      trace_.push_back({"enable"});
    }
  }
}

void TapRig::note(Happening happening) {
  collect();
  trace_.push_back(std::move(happening));
}

StepResult TapRig::result(std::optional<platform::Verdict> verdict) {
  collect();
  return {verdict, std::exchange(trace_, {})};
}

}  // namespace keyvora::testing
