#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/console.h"

namespace keyvora::x11 {

/// Records what is written to the console.
struct RecordingConsole final : platform::Console {
  void write(std::string_view record) override { records.emplace_back(record); }
  std::vector<std::string> records;
};

}  // namespace keyvora::x11
