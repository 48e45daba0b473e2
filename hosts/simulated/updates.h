#pragma once

#include <optional>
#include <variant>

#include "hosts/simulated/main_loop.h"
#include "platform/updates.h"

namespace keyvora::simulated {

/// Nothing newer is on the feed.
struct NoUpdate {
  /// What the framework says of it; the caller is not expected to repeat it.
  std::string errorDescription = "You’re up to date!";
};

/// The check ended in an error.
struct UpdateError {
  std::string errorDescription;
};

/// What a check finds.
using UpdateAnswer = std::variant<platform::UpdateItem, NoUpdate, UpdateError>;

/// The update framework: records the calls, and answers a check without user interface on the main loop, at
/// the next `advance`, once the updater was started.
class Updates final : public platform::Updates {
 public:
  Updates(World& world, MainLoop& loop);
  ~Updates() override;

  /// The answer; while there is none, the feed keeps silent.
  std::optional<UpdateAnswer> answer;

  /// The delegate of the newest controller, for a test that plays the framework; null before there is one.
  [[nodiscard]] platform::UpdaterDelegate* delegate() const;

  std::unique_ptr<platform::UpdaterController> createController(bool startingUpdater,
                                                                platform::UpdaterDelegate& delegate) override;

 private:
  struct State;
  class Controller;

  void deliver(platform::UpdaterDelegate& delegate) const;

  World& world_;
  MainLoop& loop_;
  std::weak_ptr<State> newest_;
};

}  // namespace keyvora::simulated
