#pragma once

#include "platform/file_system.h"

namespace keyvora::posix {

/// The file operations that Unix hosts share. A host adds the user's directories and the watch.
///
/// None of them waits for anything but a disk: a named pipe or a device in place of a file is told apart
/// without being waited for. Any thread.
class FileOperations : public platform::FileSystem {
 public:
  /// The most that `read` takes into memory; a larger file is refused.
  static constexpr std::size_t largestFile = 256u << 20;

  bool createDirectories(const std::filesystem::path& directory) override;
  bool exists(const std::filesystem::path& path) override;

  /// Links at `from` are followed; anything at all at `to`, be it a dangling link, is a failure. The copy has
  /// the permissions of the original, and its owner can always change it. It appears under its name when it
  /// is whole, or not at all.
  bool copy(const std::filesystem::path& from, const std::filesystem::path& to) override;

  /// Errors read like: The file “mappings.json” could not be opened: Permission denied.
  platform::FileContents read(const std::filesystem::path& path) override;

  /// Follows links. Only regular files are written to; into anything else that can be opened (a log that
  /// leads to /dev/null, a pipe with a reader) the bytes are lost, and it stays as it is. So it does when the
  /// disk has no room for all of them.
  bool append(const std::filesystem::path& path, std::string_view bytes) override;

  /// A link is not followed: the new file takes its name, as it would any other file's. A regular file's
  /// permissions stay, with its owner allowed to read and write; a new file gets those of the process's mask.
  bool replace(const std::filesystem::path& path, std::string_view bytes) override;
};

}  // namespace keyvora::posix
