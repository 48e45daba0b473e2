#pragma once

#include <sys/stat.h>

#include <functional>

#include "platform/file_system.h"

namespace keyvora::posix {

/// The file operations that hosts on Unix share. A host adds the user's directories and the watch.
///
/// None of them blocks except on a disk: a named pipe or device in place of a file is recognised without
/// waiting for it. Any thread.
class FileOperations : public platform::FileSystem {
 public:
  /// The largest file that `read` accepts.
  static constexpr std::size_t largestFile = 256u << 20;

  bool createDirectories(const std::filesystem::path& directory) override;
  bool exists(const std::filesystem::path& path) override;

  /// Follows links at `from`; anything that exists at `to`, even a dangling link, is a failure. The copy
  /// gets the original's permissions, and its owner can always write it. Its name appears only when the
  /// copy is complete.
  bool copy(const std::filesystem::path& from, const std::filesystem::path& to) override;

  /// An error reads like: The file “mappings.json” could not be opened: Permission denied.
  platform::FileContents read(const std::filesystem::path& path) override;

  /// Follows links. Writes only to regular files; for anything else that can be opened (a link to
  /// /dev/null, a pipe with a reader) the bytes are dropped. If the disk has no room for all bytes, none
  /// are appended.
  bool append(const std::filesystem::path& path, std::string_view bytes) override;

  /// A link is not followed but replaced by the new file. A regular file's permissions are kept, and its
  /// owner can read and write it; a new file gets those of the process's umask.
  bool replace(const std::filesystem::path& path, std::string_view bytes) override;

 protected:
  /// As `read`. If the file can be opened, `opened` gets what the system says about it, before it is read.
  static platform::FileContents readAndNote(const std::filesystem::path& path,
                                            const std::function<void(const struct stat&)>& opened);
};

}  // namespace keyvora::posix
