#include "appcast/updater.h"

#include <algorithm>
#include <utility>

#include "appcast/address.h"
#include "appcast/limits.h"
#include "appcast/version_order.h"

namespace keyvora::appcast {
namespace {

platform::UpdateItem publicItem(const FeedItem& item) {
  return {item.displayVersion, item.version};
}

/// The address offered to the user: the item's page if it has one, else the file.
std::string addressOf(const FeedItem& item) {
  return item.pageAddress.empty() ? item.downloadAddress : item.pageAddress;
}

}  // namespace

Updater::Updater(Settings settings, Surroundings surroundings, platform::UpdaterDelegate& delegate)
    : settings_(std::move(settings)), to_(std::move(surroundings)), delegate_(delegate) {}

Updater::~Updater() {
  if (session_ && session_->kind != Kind::probe) to_.presenter.close();
}

void Updater::startUpdater() {
  if (std::exchange(started_, true)) return;
  scheduleNextCheck();
}

void Updater::scheduleNextCheck() {
  if (!settings_.checksAutomatically || settings_.feedAddress.empty() || !to_.presenter.isAvailable()) return;
  const platform::Seconds interval = settings_.checkInterval;
  const auto elapsed = to_.history.sinceLastCheck().value_or(interval);
  nextCheck_ = to_.mainLoop.schedule(std::max(interval - elapsed, platform::Seconds::zero()), false,
                                     platform::TimerMode::commonModes, [this] {
                                       if (!session_) begin(Kind::scheduled);
                                     });
}

void Updater::checkForUpdates() {
  if (!started_) return;
  if (!session_) {
    begin(Kind::userAsked);
  } else if (session_->kind == Kind::scheduled && session_->fetch) {
    session_->kind = Kind::userAsked;
    to_.presenter.showChecking([this] { endSession(); });
  } else {
    to_.presenter.bringForward();
  }
}

void Updater::checkForUpdateInformation() {
  if (started_ && !session_) begin(Kind::probe);
}

void Updater::begin(Kind kind) {
  session_ = std::make_unique<Session>();
  session_->kind = kind;
  if (kind == Kind::userAsked) to_.presenter.showChecking([this] { endSession(); });
  if (kind != Kind::probe) to_.history.recordCheck();
  if (settings_.feedAddress.empty() || namesNoServer(settings_.feedAddress)) {
    soon_ = to_.mainLoop.schedule(platform::Seconds::zero(), false, platform::TimerMode::commonModes, [this] {
      fail("No update feed is configured (SUFeedURL in Info.plist).");
    });
    return;
  }
  session_->fetch = to_.fetcher.fetch(settings_.feedAddress, {settings_.fetchTimeout, maxFeedBytes},
                                      [this](const Fetched& fetched) { feedFetched(fetched); });
}

void Updater::feedFetched(const Fetched& fetched) {
  session_->fetch.reset();
  if (fetched.error) return fail("The update feed could not be fetched: " + *fetched.error + ".");
  session_->feed = readFeed(fetched.bytes, fetched.address, settings_.languages);
  if (session_->feed.error) return fail("The update feed is malformed: " + *session_->feed.error + ".");

  const FeedItem* newest = newestUpdate(session_->feed, settings_.version);
  if (newest == nullptr || (session_->kind == Kind::scheduled && isSkipped(*newest))) {
    return finishWithout("keyvora " + settings_.displayVersion + " is the newest version.");
  }
  const auto update = publicItem(*newest);
  if (session_->kind == Kind::probe) {
    session_.reset();
    delegate_.didFindValidUpdate(update);
    return scheduleNextCheck();
  }
  delegate_.didFindValidUpdate(update);
  present(*newest);
}

void Updater::present(const FeedItem& item) {
  const auto update = publicItem(item);
  const bool shows =
      session_->kind == Kind::userAsked || delegate_.shouldHandleShowingScheduledUpdate(update, false);
  delegate_.willHandleShowingUpdate(shows, update);
  if (!shows) {
    session_.reset();
    scheduleNextCheck();
    return;
  }
  to_.presenter.showUpdate({.displayVersion = item.displayVersion,
                            .currentVersion = settings_.displayVersion,
                            .notes = item.notes,
                            .notesAddress = item.notesAddress,
                            .address = addressOf(item)},
                           [this, &item](Choice choice) { chosen(choice, item); });
}

void Updater::chosen(Choice choice, const FeedItem& item) {
  if (choice == Choice::skip) to_.history.skipVersion(item.version);
  if (choice == Choice::open) to_.openAddress(addressOf(item));
  endSession();
}

bool Updater::isSkipped(const FeedItem& item) const {
  const auto skipped = to_.history.skippedVersion();
  return !skipped.empty() && compareVersions(item.version, skipped) <= 0;
}

void Updater::finishWithout(const std::string& explanation) {
  showThenEnd("keyvora is up to date", explanation, [this, explanation] {
    delegate_.didNotFindUpdate(explanation);
    delegate_.didAbort(explanation);
  });
}

void Updater::fail(const std::string& why) {
  showThenEnd("keyvora could not look for updates", why, [this, why] { delegate_.didAbort(why); });
}

/// If the user asked for the check, shows the answer and tells the delegate when it is closed; otherwise
/// tells the delegate at once.
void Updater::showThenEnd(const std::string& title, const std::string& details,
                          std::function<void()> tellDelegate) {
  if (session_->kind == Kind::userAsked) {
    to_.presenter.showMessage(title, details, [this, tellDelegate = std::move(tellDelegate)] {
      tellDelegate();
      endSession();
    });
    return;
  }
  session_.reset();
  tellDelegate();
  scheduleNextCheck();
}

/// Ends a session that was shown to the user.
void Updater::endSession() {
  soon_.reset();
  session_.reset();
  delegate_.willFinishUpdateSession();
  scheduleNextCheck();
}

}  // namespace keyvora::appcast
