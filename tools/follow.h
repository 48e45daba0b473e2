#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace keyvora::tools {

/// Notices when what a path names has other bytes than before, however it was saved: in place, by renaming
/// another file over it, by deleting it first. Looks when asked to; nothing is kept open.
class Follower {
 public:
  explicit Follower(std::filesystem::path path) : path_(std::move(path)) {}

  /// The file's bytes, if they are others than those given last time; the first time in any case. A file that
  /// is not there, or empty because it is being written, is waited for.
  std::optional<std::string> changed();

  /// True once when the file has not been there for some looks in a row, after it was; a save that deletes it
  /// first takes less time. It is waited for still, and given when it comes back, whatever its bytes.
  bool vanished();

 private:
  using Time = std::filesystem::file_time_type;

  std::filesystem::path path_;
  std::optional<std::pair<Time, std::uintmax_t>> seen_;
  std::optional<std::string> bytes_;
  int looksWithoutIt_ = 0;
};

/// How often to ask a `Follower`: soon enough to feel immediate, rare enough to cost nothing.
inline constexpr std::chrono::milliseconds followInterval{200};

}  // namespace keyvora::tools
