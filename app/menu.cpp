// The status menu: its rows, and the commands behind them.

#include <functional>
#include <string>
#include <utility>

#include "app/bundle_version.h"
#include "app/keyvora.h"
#include "log/log.h"
#include "mapping/mapping_store.h"
#include "platform/platform.h"
#include "system/login_item.h"
#include "system/updater.h"
#include "tap/key_sequence_tap.h"

namespace keyvora {
namespace {

using platform::MenuRow;

MenuRow row(std::string title, char keyEquivalent = 0, std::function<void()> action = nullptr) {
  MenuRow made;
  made.title = std::move(title);
  made.keyEquivalent = keyEquivalent;
  made.action = std::move(action);
  return made;
}

std::string statusLine() {
  if (!platform::current().accessibility.isTrusted()) return "Accessibility not granted";
  if (!KeySequenceTap::shared().installed()) return "Accessibility granted, installing the tap";
  return std::to_string(MappingStore::shared().mapping().sequences.size()) + " sequences, ready";
}

bool launchesAtLogin() {
  return platform::current().loginService.status() == platform::LoginStatus::enabled;
}

}  // namespace

platform::Menu Keyvora::menu() {
  const auto command = [delegate = weak_from_this()](std::string title, char key,
                                                     void (Keyvora::*operation)()) {
    return row(std::move(title), key, [delegate, operation] {
      if (const auto self = delegate.lock()) ((*self).*operation)();
    });
  };
  MenuRow login = command("Launch at Login", 0, &Keyvora::toggleLogin);
  login.checked = launchesAtLogin();
  const auto& bundle = platform::current().bundles.main();

  platform::Menu menu;
  const auto add = [&rows = menu.rows](MenuRow row) { rows.push_back(std::move(row)); };
  add(row(statusLine()));
  if (const auto& error = MappingStore::shared().lastError()) add(row("mappings.json: " + *error));
  add(MenuRow::separator());
  add(command("Edit mappings.json", 'e', &Keyvora::editMappings));
  add(command("Reload mappings", 'r', &Keyvora::reload));
  add(command("Open Accessibility settings", 0, &Keyvora::openAX));
  add(command("Show log", 'l', &Keyvora::showLog));
  add(MenuRow::separator());
  add(std::move(login));
  add(command("Check for Updates…", 0, &Keyvora::checkUpdates));
  add(row("keyvora " + version(bundle)));
  add(MenuRow::separator());
  // Quitting belongs to the application, not to the delegate.
  MenuRow quit = row("Quit keyvora", 'q', [] { platform::current().application.terminate(); });
  quit.endsApplication = true;
  add(std::move(quit));
  return menu;
}

void Keyvora::editMappings() {
  platform::current().workspace.openFile(MappingStore::shared().url().string());
}

void Keyvora::reload() {
  MappingStore::shared().reload();
}

void Keyvora::openAX() {
  platform::current().workspace.openAddress(
      "x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility");
}

void Keyvora::showLog() {
  platform::current().workspace.openFile(Log::url().string());
}

void Keyvora::toggleLogin() {
  LoginItem::set(!launchesAtLogin());
  rebuildMenu();
}

void Keyvora::checkUpdates() {
  platform::current().application.activate();
  Updater::shared().controller().checkForUpdates();
}

}  // namespace keyvora
