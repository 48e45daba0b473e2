#include "app/keyvora.h"

#include "app/bundle_version.h"
#include "log/log.h"
#include "mapping/mapping_store.h"
#include "platform/fatal.h"
#include "platform/platform.h"
#include "platform/shared.h"
#include "system/updater.h"
#include "tap/key_sequence_tap.h"

namespace keyvora {
namespace {

constexpr auto optionKey = "⌥";
constexpr platform::Seconds trustPollInterval{2.0};

/// The timer of the poll. The scope owns it, not the delegate: the poll runs on without the delegate.
struct ScheduledPoll {
  std::shared_ptr<platform::Timer> timer;
};

std::string sequenceCount() {
  return std::to_string(MappingStore::shared().mapping().sequences.size());
}

}  // namespace

std::shared_ptr<Keyvora> Keyvora::create() {
  platform::requireMainThread("Keyvora::create");
  return std::shared_ptr<Keyvora>(new Keyvora);
}

void Keyvora::applicationDidFinishLaunching() {
  const auto& host = platform::current();
  host.statusBar.onUnseen = [](std::string_view line) { Log::line(line); };
  status_ = host.statusBar.createItem();
  if (status_->hasButton()) status_->setTitle(optionKey);
  rebuildMenu();

  const auto& bundle = host.bundles.main();
  Log::line("launch " + version(bundle) + " (" + build(bundle) + ")");
  const bool trusted = host.accessibility.isTrustedPrompting();
  Log::line(trusted ? "accessibility granted" : "accessibility not granted yet");
  installTap();
  reportFindings();

  KeySequenceTap::shared().onStateChange = [delegate = weak_from_this()](bool armed,
                                                                         const std::string& text) {
    if (const auto self = delegate.lock()) self->showState(armed, text);
  };
  MappingStore::shared().onReload = [delegate = weak_from_this()](const Mapping&) {
    if (const auto self = delegate.lock()) self->rebuildMenu();
  };
  Updater::shared().controller().startUpdater();
}

void Keyvora::installTap() {
  platform::current().keyboard.onFault([](const std::string& sentence) { Log::line(sentence); });
  if (KeySequenceTap::shared().install()) {
    // The menu is not rebuilt here: it is a snapshot until something else rebuilds it.
    Log::line("tap installed, " + sequenceCount() + " sequences, log at " + Log::url().string());
    return;
  }
  Log::line("tap not installed yet: waiting for the Accessibility grant");
  auto& scheduled = platform::shared<ScheduledPoll>([] { return std::make_unique<ScheduledPoll>(); });
  scheduled.timer = platform::current().mainLoop.schedule(
      trustPollInterval, true, platform::TimerMode::defaultMode,
      [delegate = weak_from_this(), &scheduled] { pollTrust(delegate, *scheduled.timer); });
  trustPoll_ = scheduled.timer;
}

void Keyvora::reportFindings() {
  platform::current().diagnosis.whenDesktopIsUp([delegate = weak_from_this()] {
    if (const auto self = delegate.lock()) self->logFindings();
  });
}

/// Logs each finding once, however often it is found.
void Keyvora::logFindings() {
  for (const auto& finding : platform::current().diagnosis.findings(MappingStore::shared().url())) {
    if (!reported_.insert(finding.name).second) continue;
    Log::line(finding.name + ": " + finding.sentence + " " + finding.remedy);
  }
}

void Keyvora::pollTrust(const std::weak_ptr<Keyvora>& delegate, platform::Timer& timer) {
  if (!platform::current().accessibility.isTrusted()) return;
  if (!KeySequenceTap::shared().install()) return;
  Log::line("accessibility granted, tap installed, " + sequenceCount() + " sequences");
  if (const auto self = delegate.lock()) {
    self->reportFindings();
    self->rebuildMenu();
  }
  timer.invalidate();
}

void Keyvora::showState(bool armed, const std::string& text) {
  if (!status().hasButton()) return;
  status().setTitle(armed ? optionKey + (" " + text) : optionKey);
}

void Keyvora::rebuildMenu() {
  status().setMenu(menu());
}

platform::StatusItem& Keyvora::status() {
  if (!status_) platform::fatal("the status item is shown before it was made");
  return *status_;
}

}  // namespace keyvora
