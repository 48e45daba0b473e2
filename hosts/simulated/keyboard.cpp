#include "hosts/simulated/keyboard.h"

#include <algorithm>
#include <atomic>

namespace keyvora::simulated {

using platform::KeyEvent;
using platform::Verdict;

struct Keyboard::Tap {
  std::uint64_t eventMask;
  platform::TapHandler handler;
  bool enabled = false;

  [[nodiscard]] bool sees(std::uint32_t type) const {
    return enabled && type < 64 && (eventMask >> type & 1) != 0;
  }
};

class Keyboard::TapHandle final : public platform::EventTap {
 public:
  TapHandle(World& world, std::shared_ptr<Taps> taps, std::shared_ptr<Tap> tap)
      : world_(world), taps_(std::move(taps)), tap_(std::move(tap)) {}
  ~TapHandle() override { std::erase(*taps_, tap_); }

  void enable() override {
    if (world_.fails(Call::enableTap)) return;
    tap_->enabled = true;
    world_.trace.add(trace::TapEnabled{});
  }

 private:
  World& world_;
  std::shared_ptr<Taps> taps_;
  std::shared_ptr<Tap> tap_;
};

class Keyboard::Source final : public platform::EventSource {
 public:
  void setUserData(std::int64_t userData) override { userData_ = userData; }
  [[nodiscard]] std::int64_t userData() const { return userData_; }

 private:
  std::atomic<std::int64_t> userData_ = 0;
};

class Keyboard::Event final : public platform::SyntheticEvent {
 public:
  Event(Keyboard& keyboard, const KeyEvent& event) : keyboard_(keyboard), event_(event) {}

  void setType(std::uint32_t type) override { event_.type = type; }
  void setFlags(std::uint64_t flags) override { event_.flags = flags; }

  void postTo(platform::ProcessIdentifier process) override {
    if (keyboard_.world_.fails(Call::postToProcess)) return;
    keyboard_.world_.trace.add(trace::Posted{process, event_});
  }

  void postToHardware() override {
    if (!keyboard_.world_.fails(Call::postToHardware)) keyboard_.post(event_);
  }

 private:
  Keyboard& keyboard_;
  KeyEvent event_;
};

Keyboard::Keyboard(World& world, MainLoop& loop)
    : world_(world), loop_(loop), taps_(std::make_shared<Taps>()) {}

Keyboard::~Keyboard() = default;

Verdict Keyboard::send(const KeyEvent& event) {
  const bool disables = event.type == platform::event_type::tapDisabledByTimeout ||
                        event.type == platform::event_type::tapDisabledByUserInput;
  const auto taps = *taps_;  // a handler may add and remove taps
  if (disables) {
    for (const auto& tap : taps) tap->enabled = false;
  }
  for (auto tap = taps.rbegin(); tap != taps.rend(); ++tap) {
    if (!disables && !(*tap)->sees(event.type)) continue;
    if ((*tap)->handler(event) == Verdict::swallow) return Verdict::swallow;
  }
  return Verdict::pass;
}

Verdict Keyboard::type(std::uint16_t keyCode, std::uint64_t flags) {
  const auto verdict = send({platform::event_type::keyDown, keyCode, flags, 0});
  send({platform::event_type::keyUp, keyCode, flags, 0});
  return verdict;
}

Verdict Keyboard::changeFlags(std::uint16_t keyCode, std::uint64_t flags) {
  return send({platform::event_type::flagsChanged, keyCode, flags, 0});
}

void Keyboard::tapOption(std::uint16_t keyCode) {
  changeFlags(keyCode, platform::event_flag::option);
  changeFlags(keyCode, 0);
}

bool Keyboard::tapsEnabled() const {
  return !taps_->empty() && std::ranges::all_of(*taps_, [](const auto& tap) { return tap->enabled; });
}

std::unique_ptr<platform::EventTap> Keyboard::createTap(std::uint64_t eventMask,
                                                        platform::TapHandler handler) {
  if (world_.fails(Call::createTap)) return nullptr;
  auto tap = std::make_shared<Tap>(Tap{eventMask, std::move(handler)});
  taps_->push_back(tap);
  return std::make_unique<TapHandle>(world_, taps_, std::move(tap));
}

std::unique_ptr<platform::EventSource> Keyboard::createSource() {
  if (world_.fails(Call::createSource)) return nullptr;
  return std::make_unique<Source>();
}

std::unique_ptr<platform::SyntheticEvent> Keyboard::createEvent(const platform::EventSource* source,
                                                                std::uint16_t keyCode, bool down) {
  if (world_.fails(Call::createEvent) || world_.failures.failsFor(keyCode, down)) return nullptr;
  KeyEvent event;
  event.type = down ? platform::event_type::keyDown : platform::event_type::keyUp;
  event.keyCode = keyCode;
  if (source) event.userData = static_cast<const Source*>(source)->userData();
  return std::make_unique<Event>(*this, event);
}

std::optional<platform::KeyboardLayout> Keyboard::layout(const std::string& name) {
  const auto found = layouts.find(name);
  if (found == layouts.end()) return std::nullopt;
  return found->second;
}

std::vector<std::string> Keyboard::commonLayouts() {
  std::vector<std::string> names;
  for (const auto& [name, layout] : layouts) names.push_back(name);
  return names;
}

void Keyboard::post(const KeyEvent& event) {
  world_.trace.add(trace::Posted{std::nullopt, event});
  loop_.enqueue(platform::Seconds(0), [this, event] {
    if (tapsEnabled()) world_.trace.add(trace::Tapped{event, send(event)});
  });
}

}  // namespace keyvora::simulated
