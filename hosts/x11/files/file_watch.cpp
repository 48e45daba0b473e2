#include "hosts/x11/files/file_watch.h"

#include <glib.h>
#include <sys/inotify.h>

#include <algorithm>
#include <utility>

namespace keyvora::x11 {
namespace {

/// Changes are reported when none has come for this long, or when the first is this old.
constexpr FileEvents::Microseconds quiet = 5'000;
constexpr FileEvents::Microseconds longest = 20'000;

}  // namespace

std::unique_ptr<FileWatch> FileWatch::arm(std::shared_ptr<FileEvents> events, const std::string& path,
                                          std::function<void()> handler, Missed missed) {
  const auto before = FileStamp::of(path.c_str());
  if (!before) return nullptr;
  std::unique_ptr<FileWatch> watch(
      new FileWatch(std::move(events), path, *before, std::move(handler), std::move(missed)));
  if (!watch->events_->add(path.c_str(), *watch)) return nullptr;
  // If the path has got another file meanwhile, the watch may be of that one or of the one before.
  const auto after = FileStamp::of(path.c_str());
  if (!after || !after->isUntouched(*before)) watch->changed();
  return watch;
}

FileWatch::FileWatch(std::shared_ptr<FileEvents> events, std::string path, const FileStamp& file,
                     std::function<void()> handler, Missed missed)
    : events_(std::move(events)),
      path_(std::move(path)),
      file_(file),
      handler_(std::move(handler)),
      missed_(std::move(missed)) {}

FileWatch::~FileWatch() {
  FileWatch::cancel();
}

void FileWatch::cancel() {
  if (!events_) return;
  events_->remove(*this);
  events_.reset();
  if (changes_) missed_(path_);
}

bool FileWatch::happened(std::uint32_t events) {
  // After these the path names another file or none.
  const bool gone = (events & (IN_MOVE_SELF | IN_DELETE_SELF | IN_UNMOUNT)) != 0 ||
                    ((events & IN_ATTRIB) != 0 && wasUnlinked());
  if (gone || (events & (IN_MODIFY | IN_Q_OVERFLOW)) != 0) changed();
  return !gone;
}

void FileWatch::changed() {
  const auto now = g_get_monotonic_time();
  changes_ = Changes{changes_ ? changes_->first : now, now};
}

std::optional<FileWatch::Microseconds> FileWatch::due() const {
  if (!changes_) return std::nullopt;
  return std::min(changes_->last + quiet, changes_->first + longest);
}

void FileWatch::deliver() {
  changes_.reset();
  const auto handler = handler_;  // a copy: it may destroy this watch
  handler();
}

/// For a file that is deleted or replaced while it is open or has another hard link, inotify reports a
/// changed attribute only, the same as for changed permissions.
bool FileWatch::wasUnlinked() {
  const auto now = FileStamp::of(path_.c_str());
  if (!now || !now->isSameFile(file_)) return true;
  const bool lostLink = now->links < file_.links;
  file_.links = now->links;
  return lostLink;
}

}  // namespace keyvora::x11
