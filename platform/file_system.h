#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace keyvora::platform {

/// A file's content, or why it could not be read: one line for the user, in the platform's words.
struct FileContents {
  std::string bytes;
  std::optional<std::string> error;
};

/// A watch on one file, armed until it is cancelled. Main thread. Destroying it cancels.
class FileWatch {
 public:
  virtual ~FileWatch() = default;

  /// No handler runs after this. May be called more than once, also from the handler.
  virtual void cancel() = 0;
};

/// Files and the user's directories. Nothing here throws. Paths are absolute.
class FileSystem {
 public:
  virtual ~FileSystem() = default;

  /// The first of the user's Application Support directories; none when the list is empty. Any thread.
  virtual std::optional<std::filesystem::path> applicationSupportDirectory() = 0;

  /// The first of the user's Library directories; none when the list is empty. Any thread.
  virtual std::optional<std::filesystem::path> libraryDirectory() = 0;

  /// Creates the directory and its missing parents; true when it exists afterwards. Any thread.
  virtual bool createDirectories(const std::filesystem::path& directory) = 0;

  /// Whether something exists at the path, links followed. Any thread.
  virtual bool exists(const std::filesystem::path& path) = 0;

  /// Copies a file to a path that does not exist yet; false on failure. Any thread.
  virtual bool copy(const std::filesystem::path& from, const std::filesystem::path& to) = 0;

  /// Reads a whole file. Main thread.
  virtual FileContents read(const std::filesystem::path& path) = 0;

  /// Opens an existing file for writing, appends the bytes and closes it. False only when it could not be
  /// opened; a later failure loses the bytes and is not reported. Any thread.
  virtual bool append(const std::filesystem::path& path, std::string_view bytes) = 0;

  /// Makes the bytes the file's whole content: written beside it, then moved into place. Any thread.
  virtual bool replace(const std::filesystem::path& path, std::string_view bytes) = 0;

  /// Watches the file that the path names now for writing, deletion and renaming; `handler` runs on the
  /// main thread for each notification. The watch stays with that file, not with the path: after a deletion
  /// or a renaming there are no more notifications. Null when the file cannot be opened. Main thread.
  virtual std::unique_ptr<FileWatch> watch(const std::filesystem::path& path,
                                           std::function<void()> handler) = 0;
};

}  // namespace keyvora::platform
