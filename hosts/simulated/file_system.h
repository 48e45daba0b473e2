#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <set>
#include <vector>

#include "hosts/simulated/main_loop.h"
#include "platform/file_system.h"

namespace keyvora::simulated {

/// Files in memory. A path names a file, a file can be watched, and renaming or replacing gives the name to
/// another file, as on a disk; there are no links. Any thread.
class FileSystem final : public platform::FileSystem {
 public:
  FileSystem(World& world, MainLoop& loop);
  ~FileSystem() override;

  /// The user's directories; none stands for an empty list. Initially "/Users/me/Library" and its
  /// Application Support, which do not exist until the program creates them.
  std::optional<std::filesystem::path> applicationSupport;
  std::optional<std::filesystem::path> library;

  /// Another program writes the whole file, in place if it exists. Missing directories are created.
  void write(const std::filesystem::path& path, std::string bytes);

  /// Another program saves by writing a new file and renaming it to this path.
  void saveByRename(const std::filesystem::path& path, std::string bytes);

  void rename(const std::filesystem::path& from, const std::filesystem::path& to);
  void remove(const std::filesystem::path& path);

  /// Opening the file fails from now on, for reading, writing and watching alike.
  void lock(const std::filesystem::path& path);

  /// Nothing can be created in or below this directory from now on.
  void seal(const std::filesystem::path& directory);

  /// The file's bytes; none when there is no such file.
  [[nodiscard]] std::optional<std::string> content(const std::filesystem::path& path) const;
  [[nodiscard]] bool isDirectory(const std::filesystem::path& path) const;

  /// How many watches are armed.
  [[nodiscard]] std::size_t watchCount() const;

  std::optional<std::filesystem::path> applicationSupportDirectory() override;
  std::optional<std::filesystem::path> libraryDirectory() override;
  bool createDirectories(const std::filesystem::path& directory) override;
  bool exists(const std::filesystem::path& path) override;
  bool copy(const std::filesystem::path& from, const std::filesystem::path& to) override;
  platform::FileContents read(const std::filesystem::path& path) override;
  bool append(const std::filesystem::path& path, std::string_view bytes) override;
  bool replace(const std::filesystem::path& path, std::string_view bytes) override;
  std::unique_ptr<platform::FileWatch> watch(const std::filesystem::path& path,
                                             std::function<void()> handler) override;

 private:
  struct Watcher;
  struct File {
    std::string bytes;
    bool locked = false;
    std::vector<std::weak_ptr<Watcher>> watchers;
  };
  class WatchHandle;

  File* find(const std::filesystem::path& path) const;
  bool makeDirectories(const std::filesystem::path& directory);
  bool isSealed(const std::filesystem::path& path) const;
  void put(const std::filesystem::path& path, std::string bytes);
  void notify(const File& file);

  World& world_;
  MainLoop& loop_;
  mutable std::mutex mutex_;
  std::map<std::filesystem::path, std::shared_ptr<File>> files_;
  std::set<std::filesystem::path> directories_;
  std::set<std::filesystem::path> sealed_;
};

}  // namespace keyvora::simulated
