// Keys outside an armed sequence are neither logged nor kept: two users who type different texts leave
// identical traces.

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "app/keyvora.h"
#include "hosts/simulated/host.h"
#include "platform/key_code.h"
#include "platform/platform.h"

namespace keyvora::testing {
namespace {

namespace key = platform::key_code;

constexpr auto excel = "com.microsoft.Excel";
const std::filesystem::path mappings = "/Users/me/Library/Application Support/keyvora/mappings.json";
const std::filesystem::path logFile = "/Users/me/Library/Logs/keyvora.log";

/// Where a private text is typed.
struct Typing {
  const char* name;
  const char* front;
  /// Whether it is typed after a tap of Option that Escape cancelled.
  bool afterEscape = false;
};

/// Everything that the program did and wrote while a text was typed and afterwards.
std::string tracesOf(const Typing& typing, const std::vector<std::uint16_t>& text) {
  simulated::Host host;
  const platform::Scope scope(host.platform());
  host.files.write(mappings, R"({"version": 1, "tabs": {}, "sequences": [
      {"keys": "H B", "name": "Borders", "action": {"kind": "keystroke", "key": "b"}}]})");
  host.applications.start(excel, 77);
  host.applications.start("com.apple.finder", 78);
  const auto keyvora = Keyvora::create();
  keyvora->applicationDidFinishLaunching();

  if (typing.afterEscape) {
    host.applications.front = excel;
    host.keyboard.tapOption();
    host.keyboard.type(key::h);
    host.keyboard.type(key::escape);
  }
  host.applications.front = typing.front;
  for (const auto key : text) {
    EXPECT_EQ(host.keyboard.type(key), platform::Verdict::pass);
    host.advance(0.1);
  }
  // A sequence afterwards must not depend on what was typed before.
  host.applications.front = excel;
  host.keyboard.tapOption();
  host.keyboard.type(key::h);
  host.keyboard.type(key::b);
  host.advance(5);

  std::ostringstream traces;
  for (const auto& entry : host.trace.entries()) {
    simulated::PrintTo(entry, &traces);
    traces << '\n';
  }
  return traces.str() + host.files.content(logFile).value_or("no log");
}

class PrivacyTest : public ::testing::TestWithParam<Typing> {};

TEST_P(PrivacyTest, WhatIsTypedOutsideASequenceLeavesNoTrace) {
  const std::vector<std::uint16_t> password{key::s, key::a, key::c, key::k, key::e, key::r, key::returnKey};
  const std::vector<std::uint16_t> another{key::m, key::o, key::n, key::e, key::y, key::space, key::tab};
  const auto traces = tracesOf(GetParam(), password);
  EXPECT_EQ(traces, tracesOf(GetParam(), another));
  EXPECT_NE(traces.find("H B  Borders (keystroke)"), std::string::npos);
}

TEST_P(PrivacyTest, NorDoesThatAnythingWasTypedAtAllReachTheLog) {
  const auto logOf = [](const std::string& traces) { return traces.substr(traces.find("2026-")); };
  const auto typed = tracesOf(GetParam(), {key::s, key::a, key::c, key::k});
  const auto silent = tracesOf(GetParam(), {});
  EXPECT_EQ(std::ranges::count(logOf(typed), '\n'), std::ranges::count(logOf(silent), '\n'));
}

INSTANTIATE_TEST_SUITE_P(Everywhere, PrivacyTest,
                         ::testing::Values(Typing{"InAnotherApplication", "com.apple.finder"},
                                           Typing{"InTheTarget", excel}, Typing{"AfterEscape", excel, true},
                                           Typing{"AfterAChangeOfApplications", "com.apple.finder", true}),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace keyvora::testing
