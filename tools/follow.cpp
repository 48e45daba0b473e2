#include "tools/follow.h"

#include <system_error>
#include <variant>

#include "tools/file.h"

namespace keyvora::tools {
namespace {

/// A file changed more recently than this is read again, since a later save may have the same time stamp.
constexpr std::chrono::seconds stampResolution{2};

/// After this many failed looks, which take a second, the file counts as deleted.
constexpr int looksInVain = 5;

}  // namespace

std::optional<std::string> Follower::changed() {
  std::error_code failed;
  const auto time = std::filesystem::last_write_time(path_, failed);
  looksWithoutIt_ = failed ? looksWithoutIt_ + 1 : 0;
  if (failed) return std::nullopt;
  const auto size = std::filesystem::file_size(path_, failed);
  if (failed) return std::nullopt;
  const bool isRecent = Time::clock::now() - time < stampResolution;
  if (seen_ == std::pair(time, size) && !isRecent) return std::nullopt;
  auto read = readFile(path_.string());
  auto* source = std::get_if<Source>(&read);
  if (source == nullptr) return std::nullopt;
  seen_ = {time, size};
  if (bytes_ == source->bytes || (bytes_ && source->bytes.empty())) return std::nullopt;
  bytes_ = std::move(source->bytes);
  return bytes_;
}

bool Follower::vanished() {
  if (looksWithoutIt_ < looksInVain || !bytes_) return false;
  bytes_.reset();
  seen_.reset();
  return true;
}

}  // namespace keyvora::tools
