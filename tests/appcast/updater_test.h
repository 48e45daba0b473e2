#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "appcast/updater.h"
#include "feed_text.h"
#include "hosts/simulated/host.h"

namespace keyvora::appcast {

/// An updater on a virtual clock, with a web in memory and a window and a history that record their calls.
class UpdaterTest : public testing::Test {
 protected:
  static constexpr auto feedAddress = "https://example.org/feed.xml";
  static constexpr double day = 24 * 60 * 60;

  /// Everything that happened since the last call, in order.
  std::vector<std::string> take() { return std::exchange(events_, {}); }

  Updater& make() {
    updater_ = std::make_unique<Updater>(
        settings,
        Surroundings{host.mainLoop, web_, window_, history_,
                     [this](const std::string& address) { happened("open " + address); }},
        delegate_);
    return *updater_;
  }

  Updater& start() {
    make().startUpdater();
    return *updater_;
  }

  void serve(const std::string& address, std::string bytes) {
    pages_[address] = {std::move(bytes), address, {}};
  }
  void serveError(const std::string& address, std::string error) {
    pages_[address] = {"", address, std::move(error)};
  }

  Updater& updater() { return *updater_; }
  void destroyUpdater() { updater_.reset(); }

  simulated::Host host;
  Settings settings = defaults();
  bool hasWindows = true;
  bool delegateShows = true;
  std::optional<double> lastCheck;  // virtual seconds
  std::string skipped;

  /// The limits of the last fetch.
  FetchLimits lastLimits;

  /// The user's actions in the visible window.
  std::function<void()> cancel;
  std::function<void(Choice)> choose;
  std::function<void()> acknowledge;

 private:
  static Settings defaults() {
    Settings made;
    made.feedAddress = feedAddress;
    made.version = "42";
    made.displayVersion = "1.2";
    return made;
  }

  void happened(std::string event) { events_.push_back(std::move(event)); }

  class Web final : public Fetcher {
   public:
    explicit Web(UpdaterTest& test) : test_(test) {}
    std::unique_ptr<Fetch> fetch(const std::string& address, const FetchLimits& limits,
                                 std::function<void(Fetched)> done) override {
      test_.happened("fetch " + address);
      test_.lastLimits = limits;
      struct Pending final : Fetch {
        std::shared_ptr<std::function<void(Fetched)>> done;
      };
      auto pending = std::make_unique<Pending>();
      pending->done = std::make_shared<std::function<void(Fetched)>>(std::move(done));
      test_.host.mainLoop.enqueue(platform::Seconds(1),
                                  [this, address, waiting = std::weak_ptr(pending->done)] {
                                    const auto page = test_.pages_.find(address);
                                    if (const auto call = waiting.lock(); call && page != test_.pages_.end())
                                      (*call)(page->second);
                                  });
      return pending;
    }

   private:
    UpdaterTest& test_;
  };

  class Window final : public Presenter {
   public:
    explicit Window(UpdaterTest& test) : test_(test) {}
    [[nodiscard]] bool isAvailable() const override { return test_.hasWindows; }
    void showChecking(std::function<void()> cancelled) override {
      test_.happened("show checking");
      test_.cancel = std::move(cancelled);
    }
    void showUpdate(const Announcement& update, std::function<void(Choice)> chosen) override {
      test_.happened("show update " + update.displayVersion + " over " + update.currentVersion + " at " +
                     update.address + ": " + update.notes +
                     (update.notesAddress.empty() ? "" : " " + update.notesAddress));
      test_.choose = std::move(chosen);
    }
    void showMessage(const std::string& title, const std::string& details,
                     std::function<void()> acknowledged) override {
      test_.happened("show " + title + ": " + details);
      test_.acknowledge = std::move(acknowledged);
    }
    void bringForward() override { test_.happened("bring forward"); }
    void close() override { test_.happened("close"); }

   private:
    UpdaterTest& test_;
  };

  class Memory final : public History {
   public:
    explicit Memory(UpdaterTest& test) : test_(test) {}
    std::optional<platform::Seconds> sinceLastCheck() override {
      if (!test_.lastCheck) return std::nullopt;
      return platform::Seconds(test_.host.mainLoop.now()) - platform::Seconds(*test_.lastCheck);
    }
    void recordCheck() override { test_.lastCheck = platform::Seconds(test_.host.mainLoop.now()).count(); }
    std::string skippedVersion() override { return test_.skipped; }
    void skipVersion(const std::string& version) override { test_.skipped = version; }

   private:
    UpdaterTest& test_;
  };

  class Delegate final : public platform::UpdaterDelegate {
   public:
    explicit Delegate(UpdaterTest& test) : test_(test) {}
    void didFindValidUpdate(const platform::UpdateItem& item) override {
      test_.happened("found " + item.displayVersionString + " (" + item.versionString + ")");
    }
    void didNotFindUpdate(const std::string& error) override { test_.happened("not found: " + error); }
    void didAbort(const std::string& error) override { test_.happened("aborted: " + error); }
    [[nodiscard]] bool supportsGentleScheduledUpdateReminders() const override { return true; }
    [[nodiscard]] bool shouldHandleShowingScheduledUpdate(const platform::UpdateItem&, bool) const override {
      return test_.delegateShows;
    }
    void willHandleShowingUpdate(bool shows, const platform::UpdateItem&) override {
      test_.happened(shows ? "will show" : "will not show");
    }
    void willFinishUpdateSession() override { test_.happened("will finish"); }

   private:
    UpdaterTest& test_;
  };

  std::map<std::string, Fetched> pages_;
  std::vector<std::string> events_;
  Web web_{*this};
  Window window_{*this};
  Memory history_{*this};
  Delegate delegate_{*this};
  std::unique_ptr<Updater> updater_;
};

}  // namespace keyvora::appcast
