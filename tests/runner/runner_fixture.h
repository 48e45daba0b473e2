#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "hosts/simulated/host.h"
#include "platform/platform.h"
#include "runner/runner.h"

namespace keyvora::testing {

/// A runner on a simulated host in which the target runs as process 77.
class RunnerTest : public ::testing::Test {
 protected:
  RunnerTest() { host.applications.start("com.microsoft.Excel", process); }

  static constexpr platform::ProcessIdentifier process = 77;
  simulated::Host host;
  platform::Scope scope{host.platform()};
  Runner runner;
};

// Short names for entries of the trace, for tables.

inline constexpr std::int64_t marker = 1585091011;

inline simulated::TraceEntry posted(std::optional<platform::ProcessIdentifier> process, std::uint32_t type,
                                    std::uint16_t keyCode, std::uint64_t flags,
                                    std::int64_t userData = marker) {
  return simulated::trace::Posted{process, {type, keyCode, flags, userData}};
}
inline simulated::TraceEntry slept(std::int64_t microseconds) {
  return simulated::trace::Slept{std::chrono::microseconds(microseconds)};
}
inline simulated::TraceEntry logged(const std::string& line) {
  return simulated::trace::Console{"keyvora: " + line};
}
inline simulated::TraceEntry pressed(std::string element) {
  return simulated::trace::Performed{std::move(element), "AXPress"};
}

}  // namespace keyvora::testing
