#pragma once

#include <chrono>
#include <string>

namespace keyvora::stand_in {

/// A log of events in the stand-in, one line each: milliseconds since the start, a tab, the event. Main
/// thread.
class Record {
 public:
  /// Appends to this file; to standard output if it cannot be opened.
  explicit Record(std::string path);

  /// Written at once, and the file closed, because a reader waits for it.
  void line(const std::string& text);

 private:
  std::string path_;
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

/// This program's record, in the file named by the environment variable KEYVORA_STAND_IN_RECORD or, because
/// `open` passes no environment, by the argument after "--record".
Record& record();

}  // namespace keyvora::stand_in
