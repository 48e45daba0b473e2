#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "app/keyvora.h"
#include "hosts/simulated/host.h"
#include "mapping/mapping_store.h"
#include "tap/key_sequence_tap.h"

namespace keyvora {

/// The whole application on the simulated host: keyvora 1.2 (42), with two sequences in the user's file.
class ShellTest : public testing::Test {
 protected:
  static constexpr auto twoSequences = R"({"version": 1, "tabs": {}, "sequences": [
      {"keys": "H B", "name": "Borders", "action": {"kind": "keytips", "keys": "HB"}},
      {"keys": "W F", "name": "Freeze", "action": {"kind": "keytips", "keys": "WF"}}]})";
  static constexpr auto oneSequence = R"({"version": 1, "tabs": {}, "sequences": [
      {"keys": "H B", "name": "Borders", "action": {"kind": "keytips", "keys": "HB"}}]})";
  static constexpr auto mappingsPath = "/Users/me/Library/Application Support/keyvora/mappings.json";
  static constexpr auto logPath = "/Users/me/Library/Logs/keyvora.log";

  ShellTest() { host.files.write(mappingsPath, twoSequences); }

  /// The user has not granted the Accessibility permission, and the system refuses taps.
  void withholdTrust() {
    host.accessibility.trusted = false;
    host.failures.always(simulated::Call::createTap);
  }

  void launch() {
    keyvora = Keyvora::create();
    keyvora->applicationDidFinishLaunching();
  }

  /// The status item's menu, one line per row: "[✓] title (letter)", with a bullet before rows that cannot
  /// be chosen, and a dash for a separator.
  [[nodiscard]] std::vector<std::string> rows() const {
    std::vector<std::string> lines;
    for (const auto& row : host.statusBar.menu().rows) {
      std::string& line = lines.emplace_back();
      if (row.checked) line += "✓ ";
      if (!row.isEnabled() && !row.isSeparator) line += "• ";
      line += row.isSeparator ? "-" : row.title;
      if (row.keyEquivalent != 0) line += std::string(" (") + row.keyEquivalent + ")";
    }
    return lines;
  }

  [[nodiscard]] std::string statusLine() const { return host.statusBar.menu().rows.front().title; }

  [[nodiscard]] std::size_t menusShown() const { return host.trace.of<simulated::trace::MenuShown>().size(); }

  simulated::Host host;
  platform::Scope scope{host.platform()};
  std::shared_ptr<Keyvora> keyvora;
};

}  // namespace keyvora
