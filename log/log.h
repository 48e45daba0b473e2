#pragma once

#include <chrono>
#include <filesystem>
#include <string_view>

namespace keyvora {

/// The log: one line of text per record, time-stamped, at the end of `keyvora.log` in the user's Logs
/// directory, with a copy to the console.
class Log {
 public:
  /// Writes the console copy and takes the time stamp on the caller's thread, then passes the record to the
  /// log's queue and returns. Any thread; never fails, never waits for the file.
  static void line(std::string_view message);

  /// Where the log file is. Stops the process when the user has no Library directory. Any thread.
  static const std::filesystem::path& url();

  /// Waits until all records submitted so far are written, for at most `limit`.
  static void drain(std::chrono::milliseconds limit);
};

}  // namespace keyvora
