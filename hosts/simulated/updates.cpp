#include "hosts/simulated/updates.h"

namespace keyvora::simulated {

using What = trace::UpdaterCalled::What;

struct Updates::State {
  platform::UpdaterDelegate& delegate;
  bool started = false;
};

class Updates::Controller final : public platform::UpdaterController {
 public:
  Controller(Updates& updates, std::shared_ptr<State> state) : updates_(updates), state_(std::move(state)) {}

  void startUpdater() override {
    if (updates_.world_.fails(Call::startUpdater)) return;
    state_->started = true;
    updates_.world_.trace.add(trace::UpdaterCalled{What::started});
  }

  void checkForUpdates() override {
    if (updates_.world_.fails(Call::checkForUpdates)) return;
    updates_.world_.trace.add(trace::UpdaterCalled{What::checked});
  }

  void checkForUpdateInformation() override {
    if (updates_.world_.fails(Call::checkForUpdateInformation)) return;
    updates_.world_.trace.add(trace::UpdaterCalled{What::probed});
    if (!state_->started) return;
    updates_.loop_.enqueue(platform::Seconds(0), [updates = &updates_, waiting = std::weak_ptr(state_)] {
      if (const auto state = waiting.lock()) updates->deliver(state->delegate);
    });
  }

 private:
  Updates& updates_;
  std::shared_ptr<State> state_;
};

Updates::Updates(World& world, MainLoop& loop) : world_(world), loop_(loop) {}

Updates::~Updates() = default;

platform::UpdaterDelegate* Updates::delegate() const {
  const auto state = newest_.lock();
  return state ? &state->delegate : nullptr;
}

std::unique_ptr<platform::UpdaterController> Updates::createController(bool startingUpdater,
                                                                       platform::UpdaterDelegate& delegate) {
  world_.trace.add(trace::UpdaterCalled{What::created});
  auto state = std::make_shared<State>(State{delegate});
  newest_ = state;
  auto controller = std::make_unique<Controller>(*this, std::move(state));
  if (startingUpdater) controller->startUpdater();
  return controller;
}

void Updates::deliver(platform::UpdaterDelegate& delegate) const {
  if (!answer) return;
  const auto found = *answer;
  if (const auto* item = std::get_if<platform::UpdateItem>(&found)) {
    delegate.didFindValidUpdate(*item);
  } else if (const auto* none = std::get_if<NoUpdate>(&found)) {
    delegate.didNotFindUpdate(none->errorDescription);
    delegate.didAbort(none->errorDescription);
  } else {
    delegate.didAbort(std::get<UpdateError>(found).errorDescription);
  }
}

}  // namespace keyvora::simulated
