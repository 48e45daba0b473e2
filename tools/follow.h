#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace keyvora::tools {

/// Notices when the file at a path has other bytes than before, however it was saved: in place, by renaming
/// another file to it, or by deleting it first. Looks only when called; keeps no file open.
class Follower {
 public:
  explicit Follower(std::filesystem::path path) : path_(std::move(path)) {}

  /// The file's bytes, if they differ from those returned last; always at the first call. A file that is
  /// missing, or empty because it is being written, counts as unchanged until it has content.
  std::optional<std::string> changed();

  /// True once when an existing file has been missing for several looks in a row; a save that deletes the
  /// file first takes less time. When the file comes back, `changed` returns it even with the same bytes.
  bool vanished();

 private:
  using Time = std::filesystem::file_time_type;

  std::filesystem::path path_;
  std::optional<std::pair<Time, std::uintmax_t>> seen_;
  std::optional<std::string> bytes_;
  int looksWithoutIt_ = 0;
};

/// The interval between two looks: short for a user, and cheap.
inline constexpr std::chrono::milliseconds followInterval{200};

}  // namespace keyvora::tools
