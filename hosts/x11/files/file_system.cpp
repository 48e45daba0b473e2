#include "hosts/x11/files/file_system.h"

#include <utility>

#include "hosts/x11/files/directories.h"
#include "hosts/x11/files/file_watch.h"

namespace keyvora::x11 {

FileSystem::FileSystem(LoopWait& wait) : wait_(wait), lastRead_(std::make_shared<LastRead>()) {}

std::optional<std::filesystem::path> FileSystem::applicationSupportDirectory() {
  const auto library = libraryDirectory();
  if (!library) return std::nullopt;
  return *library / "Application Support";
}

std::optional<std::filesystem::path> FileSystem::libraryDirectory() {
  const auto home = homeDirectory();
  if (!home) return std::nullopt;
  return std::filesystem::path(*home) / "Library";
}

platform::FileContents FileSystem::read(const std::filesystem::path& path) {
  *lastRead_ = {.path = path.native(), .file = std::nullopt};
  // The stamp is always older than the content: a change meanwhile counts as later.
  const auto note = [this](const struct stat& status) { lastRead_->file = FileStamp::of(status); };
  auto contents = readAndNote(path, note);
  if (lastRead_->file) return contents;
  // It could not be opened, so its stamp is younger than this answer: read again, if there is a file by now.
  lastRead_->file = FileStamp::of(path.c_str());
  return lastRead_->file ? readAndNote(path, note) : contents;
}

std::unique_ptr<platform::FileWatch> FileSystem::watch(const std::filesystem::path& path,
                                                       std::function<void()> handler) {
  if (!events_) events_ = FileEvents::open(wait_);
  if (!events_) return nullptr;
  const auto missed = [lastRead = lastRead_](const std::string& watched) {
    if (lastRead->path == watched) lastRead->overtaken = true;
  };
  auto watch = FileWatch::arm(events_, path.native(), std::move(handler), missed);
  if (watch && lastRead_->path == path.native()) {
    const bool differs = !lastRead_->file || !lastRead_->file->hasSameContent(watch->file());
    if (std::exchange(lastRead_->overtaken, false) || differs) watch->changed();
  }
  return watch;
}

}  // namespace keyvora::x11
