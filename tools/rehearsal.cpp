#include "tools/rehearsal.h"

#include <algorithm>
#include <utility>

#include "hosts/simulated/host.h"
#include "platform/platform.h"
#include "runner/excel.h"
#include "runner/runner.h"
#include "tap/key_sequence_tap.h"
#include "tools/letters.h"
#include "tools/menu_bar.h"

namespace keyvora::tools {
namespace {

/// The target's process; any number will do.
constexpr platform::ProcessIdentifier targetProcess = 1;

/// A runner that records that it was called.
class NotingRunner final : public Runner {
 public:
  bool used = false;

  void sendKeyTips(const std::string& keys, const std::string& name) override {
    used = true;
    Runner::sendKeyTips(keys, name);
  }
  void sendKeystroke(const std::string& key, const std::vector<std::string>& modifiers,
                     const std::string& name) override {
    used = true;
    Runner::sendKeystroke(key, modifiers, name);
  }
  void runAppleScript(const std::string& script, const std::string& name) override {
    used = true;
    Runner::runAppleScript(script, name);
  }
  void clickMenu(const std::vector<std::string>& path, const std::string& name) override {
    used = true;
    Runner::clickMenu(path, name);
  }
};

}  // namespace

struct Rehearsal::Stage {
  explicit Stage(const Mapping& document) : mapping(document) {
    host.applications.start(std::string(Excel::bundleIdentifier), targetProcess);
    host.applications.front = Excel::bundleIdentifier;
    host.queues.walking = simulated::Queues::Walking::inLine;
    host.accessibility.setMenuBar(targetProcess, menuBarFor(mapping, host.accessibility));
    tap.onStateChange = [this](bool isArmed, const std::string&) {
      armed = isArmed;
      changedAt = host.mainLoop.now();
    };
    tap.install();
  }

  /// What has happened since the last step.
  Step step(platform::Verdict verdict) {
    Step result{verdict == platform::Verdict::swallow, armed, host.trace.logged(), runner.used};
    host.trace.clear();
    runner.used = false;
    return result;
  }

  const Mapping& mapping;
  simulated::Host host;
  platform::Scope scope{host.platform()};
  NotingRunner runner;
  KeySequenceTap tap{[this]() -> const Mapping& { return mapping; }, runner};
  bool armed = false;
  std::chrono::microseconds changedAt{0};
};

Rehearsal::Rehearsal(const Mapping& mapping) : stage_(std::make_unique<Stage>(mapping)) {}

Rehearsal::~Rehearsal() = default;

Step Rehearsal::tapOption() {
  stage_->host.keyboard.tapOption();
  return stage_->step(platform::Verdict::pass);
}

Step Rehearsal::type(std::string_view letter) {
  return stage_->step(stage_->host.keyboard.type(keyTyping(letter).value()));
}

std::optional<std::pair<std::chrono::milliseconds, Step>> Rehearsal::wait() {
  auto& host = stage_->host;
  if (!stage_->armed || host.mainLoop.pending() == 0) return std::nullopt;
  const auto began = host.mainLoop.now();
  host.advance(platform::Seconds(std::max(stage_->mapping.timeout(), {})).count());
  const auto time = std::chrono::duration_cast<std::chrono::milliseconds>(stage_->changedAt - began);
  return std::pair(time, stage_->step(platform::Verdict::pass));
}

}  // namespace keyvora::tools
