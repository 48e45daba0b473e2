#include "hosts/simulated/file_system.h"

#include <algorithm>

namespace keyvora::simulated {

namespace fs = std::filesystem;

/// Lives as long as its handle, so that a pending notification can see that the watch was cancelled or
/// destroyed.
struct FileSystem::Watcher {
  std::function<void()> handler;
  bool cancelled = false;
};

class FileSystem::WatchHandle final : public platform::FileWatch {
 public:
  explicit WatchHandle(std::shared_ptr<Watcher> watcher) : watcher_(std::move(watcher)) {}
  void cancel() override { watcher_->cancelled = true; }

 private:
  std::shared_ptr<Watcher> watcher_;
};

FileSystem::FileSystem(World& world, MainLoop& loop)
    : applicationSupport("/Users/me/Library/Application Support"),
      library("/Users/me/Library"),
      world_(world),
      loop_(loop) {}

FileSystem::~FileSystem() = default;

void FileSystem::write(const fs::path& path, std::string bytes) {
  const std::scoped_lock lock(mutex_);
  if (auto* file = find(path)) {
    file->bytes = std::move(bytes);
    notify(*file);
  } else {
    makeDirectories(path.parent_path());
    put(path, std::move(bytes));
  }
}

void FileSystem::saveByRename(const fs::path& path, std::string bytes) {
  const std::scoped_lock lock(mutex_);
  put(path, std::move(bytes));
}

void FileSystem::rename(const fs::path& from, const fs::path& to) {
  const std::scoped_lock lock(mutex_);
  auto node = files_.extract(from);
  if (!node) return;
  notify(*node.mapped());
  if (const auto* replaced = find(to)) notify(*replaced);
  files_[to] = std::move(node.mapped());
}

void FileSystem::remove(const fs::path& path) {
  const std::scoped_lock lock(mutex_);
  if (const auto* file = find(path)) notify(*file);
  files_.erase(path);
}

void FileSystem::lock(const fs::path& path) {
  const std::scoped_lock lock(mutex_);
  if (auto* file = find(path)) file->locked = true;
}

void FileSystem::seal(const fs::path& directory) {
  const std::scoped_lock lock(mutex_);
  sealed_.insert(directory);
}

std::optional<std::string> FileSystem::content(const fs::path& path) const {
  const std::scoped_lock lock(mutex_);
  const auto* file = find(path);
  if (!file) return std::nullopt;
  return file->bytes;
}

bool FileSystem::isDirectory(const fs::path& path) const {
  const std::scoped_lock lock(mutex_);
  return directories_.contains(path);
}

std::size_t FileSystem::watchCount() const {
  const std::scoped_lock lock(mutex_);
  std::size_t count = 0;
  for (const auto& [path, file] : files_) {
    count += static_cast<std::size_t>(std::ranges::count_if(file->watchers, [](const auto& each) {
      const auto watcher = each.lock();
      return watcher && !watcher->cancelled;
    }));
  }
  return count;
}

std::optional<fs::path> FileSystem::applicationSupportDirectory() {
  if (world_.fails(Call::applicationSupportDirectory)) return std::nullopt;
  return applicationSupport;
}

std::optional<fs::path> FileSystem::libraryDirectory() {
  if (world_.fails(Call::libraryDirectory)) return std::nullopt;
  return library;
}

bool FileSystem::createDirectories(const fs::path& directory) {
  if (world_.fails(Call::createDirectories)) return false;
  const std::scoped_lock lock(mutex_);
  return makeDirectories(directory);
}

bool FileSystem::exists(const fs::path& path) {
  if (world_.fails(Call::exists)) return false;
  const std::scoped_lock lock(mutex_);
  return find(path) || directories_.contains(path);
}

bool FileSystem::copy(const fs::path& from, const fs::path& to) {
  if (world_.fails(Call::copy)) return false;
  const std::scoped_lock lock(mutex_);
  const auto* source = find(from);
  if (!source || source->locked || find(to) || isSealed(to) || !directories_.contains(to.parent_path())) {
    return false;
  }
  put(to, source->bytes);
  return true;
}

platform::FileContents FileSystem::read(const fs::path& path) {
  const bool fails = world_.fails(Call::read);
  const std::scoped_lock lock(mutex_);
  const auto* file = find(path);
  const auto error = [&path](const char* reason) {
    return platform::FileContents{
        {}, "The file “" + path.filename().string() + "” could not be opened: " + reason + "."};
  };
  if (fails) return error("Input/output error");
  if (!file) return error("No such file or directory");
  if (file->locked) return error("Permission denied");
  return {file->bytes, std::nullopt};
}

bool FileSystem::append(const fs::path& path, std::string_view bytes) {
  if (world_.fails(Call::append)) return false;
  const std::scoped_lock lock(mutex_);
  auto* file = find(path);
  if (!file || file->locked) return false;
  file->bytes += bytes;
  notify(*file);
  return true;
}

bool FileSystem::replace(const fs::path& path, std::string_view bytes) {
  if (world_.fails(Call::replace)) return false;
  const std::scoped_lock lock(mutex_);
  if (isSealed(path) || !directories_.contains(path.parent_path())) return false;
  put(path, std::string(bytes));
  return true;
}

std::unique_ptr<platform::FileWatch> FileSystem::watch(const fs::path& path, std::function<void()> handler) {
  if (world_.fails(Call::watch)) return nullptr;
  const std::scoped_lock lock(mutex_);
  auto* file = find(path);
  if (!file || file->locked) return nullptr;
  auto watcher = std::make_shared<Watcher>();
  watcher->handler = std::move(handler);
  std::erase_if(file->watchers, [](const auto& each) { return each.expired(); });
  file->watchers.push_back(watcher);
  return std::make_unique<WatchHandle>(std::move(watcher));
}

FileSystem::File* FileSystem::find(const fs::path& path) const {
  const auto found = files_.find(path);
  return found == files_.end() ? nullptr : found->second.get();
}

bool FileSystem::makeDirectories(const fs::path& directory) {
  if (directories_.contains(directory)) return true;
  if (isSealed(directory) || find(directory)) return false;
  if (directory.has_relative_path() && !makeDirectories(directory.parent_path())) return false;
  directories_.insert(directory);
  return true;
}

bool FileSystem::isSealed(const fs::path& path) const {
  for (auto above = path.parent_path();; above = above.parent_path()) {
    if (sealed_.contains(above)) return true;
    if (!above.has_relative_path()) return false;
  }
}

void FileSystem::put(const fs::path& path, std::string bytes) {
  if (const auto* replaced = find(path)) notify(*replaced);
  files_[path] = std::make_shared<File>(File{std::move(bytes), false, {}});
}

void FileSystem::notify(const File& file) {
  for (const auto& each : file.watchers) {
    loop_.enqueue(platform::Seconds(0), [each] {
      const auto watcher = each.lock();
      if (watcher && !watcher->cancelled) watcher->handler();
    });
  }
}

}  // namespace keyvora::simulated
