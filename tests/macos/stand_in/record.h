#pragma once

#include <chrono>
#include <string>

namespace keyvora::stand_in {

/// What happened to the stand-in, one line for each event: milliseconds since the start, a tabulator, what it
/// was. Main thread.
class Record {
 public:
  /// Appends to this file; where it cannot be opened, to standard output.
  explicit Record(std::string path);

  /// Written at once, and the file closed: a reader waits for it.
  void line(const std::string& text);

 private:
  std::string path_;
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

/// The one of this program, in the file that the environment's KEYVORA_STAND_IN_RECORD names or, since `open`
/// hands on no environment, the argument after "--record".
Record& record();

}  // namespace keyvora::stand_in
