#include "hosts/x11/keyboard/keyboard.h"

#include <utility>

#include "hosts/x11/keyboard/current_tap.h"
#include "hosts/x11/keyboard/event_tap.h"
#include "hosts/x11/keyboard/layouts.h"
#include "hosts/x11/keyboard/poster.h"
#include "hosts/x11/keyboard/synthetic_event.h"

namespace keyvora::x11 {

Keyboard::Keyboard(std::string displayName, std::filesystem::path tapProgram, CurrentTap& currentTap,
                   TargetWindow& target)
    : tapCommand_{std::move(tapProgram), std::move(displayName)}, currentTap_(currentTap), target_(target) {}

Keyboard::~Keyboard() = default;

std::unique_ptr<platform::EventTap> Keyboard::createTap(std::uint64_t eventMask,
                                                        platform::TapHandler handler) {
  std::string problem;
  auto process = TapProcess::start(tapCommand_, problem);
  // Called every few seconds while there is no tap: a problem that stays is reported once.
  if (std::exchange(problem_, problem) != problem && !problem.empty()) report(problem);
  if (!process) return nullptr;
  return std::make_unique<EventTap>(std::move(process), tapCommand_, currentTap_, target_, eventMask,
                                    std::move(handler),
                                    [this](const std::string& sentence) { report(sentence); });
}

std::unique_ptr<platform::EventSource> Keyboard::createSource() {
  if (!poster()) return nullptr;
  return std::make_unique<EventSource>();
}

std::unique_ptr<platform::SyntheticEvent> Keyboard::createEvent(const platform::EventSource* source,
                                                                std::uint16_t keyCode, bool down) {
  auto posting = poster();
  if (!posting || !posting->hasKey(keyCode)) return nullptr;
  const auto* ours = dynamic_cast<const EventSource*>(source);
  const KeyStroke stroke{
      .keyCode = keyCode, .down = down, .userData = ours == nullptr ? 0 : ours->userData()};
  return std::make_unique<SyntheticEvent>(std::move(posting), currentTap_, stroke);
}

void Keyboard::onFault(const std::function<void(const std::string& sentence)>& report) {
  report_ = report;
}

std::optional<platform::KeyboardLayout> Keyboard::layout(const std::string& name) {
  return layoutNamed(name);
}

std::vector<std::string> Keyboard::commonLayouts() {
  return x11::commonLayouts();
}

void Keyboard::report(const std::string& sentence) {
  if (report_) report_(sentence);
}

std::shared_ptr<Poster> Keyboard::poster() {
  const std::scoped_lock lock(posterMutex_);
  if (!poster_) poster_ = Poster::open(tapCommand_.display, target_);
  return poster_;
}

}  // namespace keyvora::x11
