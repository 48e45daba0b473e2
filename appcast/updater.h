#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "appcast/feed.h"
#include "appcast/fetcher.h"
#include "appcast/history.h"
#include "appcast/presenter.h"
#include "appcast/settings.h"
#include "platform/main_loop.h"
#include "platform/updates.h"

namespace keyvora::appcast {

/// What an updater works with. All of it must outlive the updater.
struct Surroundings {
  platform::MainLoop& mainLoop;
  Fetcher& fetcher;
  Presenter& presenter;
  History& history;
  /// Opens an address in the user's browser.
  std::function<void(const std::string&)> openAddress;
};

/// The updater on systems without an update framework: reads the feed, calls the delegate in the
/// framework's order and shows the answer. It installs nothing; the package manager does that. Main thread.
class Updater final : public platform::UpdaterController {
 public:
  Updater(Settings settings, Surroundings surroundings, platform::UpdaterDelegate& delegate);
  ~Updater() override;
  Updater(const Updater&) = delete;
  Updater& operator=(const Updater&) = delete;

  void startUpdater() override;
  void checkForUpdates() override;
  void checkForUpdateInformation() override;

  /// Whether a check is in progress, or its answer is being shown.
  [[nodiscard]] bool isBusy() const { return session_ != nullptr; }

 private:
  enum class Kind { scheduled, userAsked, probe };

  /// One check, from its start until its answer was reported and closed.
  struct Session {
    Kind kind = Kind::probe;
    std::unique_ptr<Fetch> fetch;
    Feed feed;
  };

  void begin(Kind kind);
  void feedFetched(const Fetched& fetched);
  void present(const FeedItem& item);
  void chosen(Choice choice, const FeedItem& item);
  void finishWithout(const std::string& explanation);
  void fail(const std::string& why);
  void showThenEnd(const std::string& title, const std::string& details, std::function<void()> tellDelegate);
  void endSession();
  void scheduleNextCheck();
  [[nodiscard]] bool isSkipped(const FeedItem& item) const;

  Settings settings_;
  Surroundings to_;
  platform::UpdaterDelegate& delegate_;
  bool started_ = false;
  std::unique_ptr<Session> session_;
  std::unique_ptr<platform::Timer> nextCheck_;
  /// Work that a session postponed to the next pass of the loop.
  std::unique_ptr<platform::Timer> soon_;
};

}  // namespace keyvora::appcast
