#include "tests/faults/session.h"

#include <sstream>

#include "app/process_entry.h"
#include "mapping/mapping_store.h"
#include "platform/key_code.h"
#include "platform/platform.h"
#include "tap/key_sequence_tap.h"

namespace keyvora::testing {
namespace {

constexpr auto defaultDocument = R"({"version": 1, "timeoutMilliseconds": 800, "tabs": {}, "sequences": [
    {"keys": "H B", "name": "Borders", "action": {"kind": "keytips", "keys": "hb"}},
    {"keys": "V", "name": "Values", "action": {"kind": "keystroke", "key": "v", "modifiers": ["cmd"]}},
    {"keys": "M", "name": "Save", "action": {"kind": "menu", "path": ["File", "Save"]}},
    {"keys": "S", "name": "Beep", "action": {"kind": "applescript", "script": "beep"}},
    {"keys": "A", "name": "Short", "action": {"kind": "keystroke", "key": "f1"}},
    {"keys": "AB", "name": "Long", "action": {"kind": "keystroke", "key": "f2"}}]})";
constexpr auto excel = "com.microsoft.Excel";
constexpr platform::ProcessIdentifier process = 77;
const std::filesystem::path mappings = "/Users/me/Library/Application Support/keyvora/mappings.json";
const std::filesystem::path logFilePath = "/Users/me/Library/Logs/keyvora.log";

using platform::key_code::a, platform::key_code::b, platform::key_code::escape, platform::key_code::h,
    platform::key_code::m, platform::key_code::s, platform::key_code::v;

}  // namespace

Session::Session() {
  for (const auto& [directory, bundle] : host.bundles.others) {
    for (const auto& [name, path] : bundle.resources) host.files.write(path, defaultDocument);
  }
  host.applications.start(excel, process);
  const auto save = host.accessibility.element("Save");
  const auto file = host.accessibility.element("File", {host.accessibility.element(std::nullopt, {save})});
  host.accessibility.setMenuBar(process, host.accessibility.element(std::nullopt, {file}));
  host.updates.answer = simulated::NoUpdate{};
}

void Session::run(std::vector<std::string_view> arguments, std::function<void()> whileRunning) {
  const platform::Scope scope(host.platform());
  host.application.whileRunning = std::move(whileRunning);
  processEntry(arguments);
  host.advance(5);
}

void Session::play() {
  run({"keyvora"}, [this] {
    use();
    installed = KeySequenceTap::shared().installed();
    choose("Quit keyvora");
    host.application.terminate();  // as at a logout, if there is no menu
  });
}

void Session::probe() {
  run({"keyvora", "--probe-updates"}, [this] { host.advance(1); });
}

void Session::use() {
  host.applications.front = "com.apple.finder";
  typeOrdinarily();
  host.applications.front = excel;
  typeOrdinarily();
  work();
  // The system disables the tap; the core enables it again.
  host.keyboard.send({platform::event_type::tapDisabledByTimeout, 0, 0, 0});
  // A cancelled sequence, and letters that are no sequence.
  typeSequence({h, escape});
  typeOrdinarily();
  typeSequence({h, h});
  typeOrdinarily();
  host.files.write(mappings, defaultDocument);
  host.advance(0.5);
  for (const auto* title : {"Edit mappings.json", "Reload mappings", "Open Accessibility settings",
                            "Show log", "Launch at Login", "Launch at Login", "Check for Updates…"}) {
    choose(title);
  }
  typeOrdinarily();
}

/// One sequence of each kind, and one that waits.
void Session::work() {
  for (const auto& keys : {std::initializer_list<std::uint16_t>{h, b}, {v}, {m}, {s}, {a}}) {
    typeSequence(keys);
    host.advance(2);
    typeOrdinarily();
  }
}

void Session::typeOrdinarily() {
  for (const auto key : {h, b, escape, a}) {
    ++ordinaryKeys;
    if (host.keyboard.type(key) == platform::Verdict::swallow) ++lostKeys;
  }
}

void Session::typeSequence(std::initializer_list<std::uint16_t> keys) {
  host.keyboard.tapOption();
  for (const auto key : keys) {
    if (host.keyboard.type(key) == platform::Verdict::pass) ++missedKeys;
  }
}

void Session::choose(std::string_view title) {
  for (const auto& row : host.statusBar.menu().rows) {
    if (row.title != title || !row.isEnabled()) continue;
    const auto action = row.action;  // a copy: it may replace the menu
    return action();
  }
}

bool Session::recovers(bool restart) {
  bool recovered = false;
  run({"keyvora"}, [&] {
    if (!restart) {
      use();
      host.failures.clear();
      // The system notifies a disabled tap at some time.
      host.keyboard.send({platform::event_type::tapDisabledByTimeout, 0, 0, 0});
      host.advance(2.5);
      host.files.write(mappings, defaultDocument);
      host.advance(0.5);
      choose("Reload mappings");
    }
    recovered = works();
  });
  return recovered;
}

bool Session::works() {
  const auto before = host.trace.logged().size();
  missedKeys = 0;
  host.applications.front = excel;
  work();
  const auto all = host.trace.logged();
  const std::vector lines(all.begin() + static_cast<std::ptrdiff_t>(before), all.end());
  const auto faultless = faultlessLog();
  const std::vector expected(faultless.begin() + 3, faultless.begin() + 13);
  return missedKeys == 0 && lines == expected;
}

std::vector<std::string> Session::logFile() const {
  std::istringstream lines(host.files.content(logFilePath).value_or(""));
  constexpr std::size_t stamp = 20;
  std::vector<std::string> messages;
  for (std::string line; std::getline(lines, line);) {
    messages.push_back(line.size() < stamp ? line : line.substr(stamp));
  }
  return messages;
}

std::vector<std::string> faultlessLog() {
  const std::string armed = "armed: Option tapped in Excel";
  return {"launch 1.2 (42)",
          "accessibility granted",
          "tap installed, 6 sequences, log at " + logFilePath.string(),
          armed,
          "H B  Borders (keytips hb)",
          armed,
          "V  Values (keystroke)",
          armed,
          "M  Save (menu)",
          armed,
          "S  Beep (applescript)",
          armed,
          "A  Short (keystroke)",
          armed,
          armed,
          "no sequence HH",
          "mappings reloaded, 6 sequences",
          "mappings reloaded, 6 sequences"};
}

}  // namespace keyvora::testing
