#include "hosts/x11/files/file_system.h"

#include <utility>

#include "hosts/x11/files/directories.h"
#include "hosts/x11/files/file_watch.h"

namespace keyvora::x11 {

FileSystem::FileSystem(platform::MainLoop& loop) : loop_(loop), lastRead_(std::make_shared<LastRead>()) {}

std::optional<std::filesystem::path> FileSystem::applicationSupportDirectory() {
  const auto library = libraryDirectory();
  if (!library) return std::nullopt;
  return *library / "Application Support";
}

std::optional<std::filesystem::path> FileSystem::libraryDirectory() {
  const auto home = homeDirectory();
  if (!home) return std::nullopt;
  return *home / "Library";
}

platform::FileContents FileSystem::read(const std::filesystem::path& path) {
  *lastRead_ = {path, FileStamp::of(path)};  // before reading: a change meanwhile counts as later
  return posix::FileOperations::read(path);
}

std::unique_ptr<platform::FileWatch> FileSystem::watch(const std::filesystem::path& path,
                                                       std::function<void()> handler) {
  const auto missed = [path, lastRead = lastRead_] {
    if (lastRead->path == path) lastRead->overtaken = true;
  };
  auto watch = FileWatch::arm(path, std::move(handler), missed);
  if (watch && lastRead_->path == path) {
    const bool changed = !lastRead_->file || !lastRead_->file->hasSameContent(watch->file());
    if (changed || std::exchange(lastRead_->overtaken, false)) watch->notifySoon(loop_);
  }
  return watch;
}

}  // namespace keyvora::x11
