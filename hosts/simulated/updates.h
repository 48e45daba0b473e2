#pragma once

#include <optional>
#include <variant>

#include "hosts/simulated/main_loop.h"
#include "platform/updates.h"

namespace keyvora::simulated {

/// The feed has nothing newer.
struct NoUpdate {
  /// The framework's message, which the caller is not expected to repeat.
  std::string errorDescription = "You’re up to date!";
};

/// The check ended in an error.
struct UpdateError {
  std::string errorDescription;
};

/// The result of a check.
using UpdateAnswer = std::variant<platform::UpdateItem, NoUpdate, UpdateError>;

/// The update framework: records the calls, and answers a check without user interface on the main loop, at
/// the next `advance`, once the updater was started.
class Updates final : public platform::Updates {
 public:
  Updates(World& world, MainLoop& loop);
  ~Updates() override;

  /// The answer. While it is empty, a check gets none.
  std::optional<UpdateAnswer> answer;

  /// The delegate of the newest controller, for a test that acts as the framework; null before there is
  /// one.
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
