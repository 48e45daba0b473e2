#include "hosts/x11/files/file_watch.h"

#include <fcntl.h>
#include <glib.h>
#include <sys/inotify.h>

#include <algorithm>
#include <array>
#include <string>
#include <utility>

namespace keyvora::x11 {
namespace {

/// Changes are reported when none has come for this long, or when the first is this old, in milliseconds.
constexpr int quiet = 5;
constexpr int longest = 20;

constexpr std::uint32_t watchedEvents = IN_MODIFY | IN_ATTRIB | IN_MOVE_SELF | IN_DELETE_SELF;

}  // namespace

std::unique_ptr<FileWatch> FileWatch::arm(const std::filesystem::path& path, std::function<void()> handler,
                                          std::function<void()> missed) {
  // Through a descriptor, so that the stamp and the watch are of the same file.
  const posix::FileDescriptor file(open(path.c_str(), O_PATH | O_CLOEXEC));
  if (!file.isOpen()) return nullptr;
  struct stat status {};
  if (fstat(file.number(), &status) != 0) return nullptr;
  posix::FileDescriptor inotify(inotify_init1(IN_CLOEXEC | IN_NONBLOCK));
  if (!inotify.isOpen()) return nullptr;
  const auto name = "/proc/self/fd/" + std::to_string(file.number());
  if (inotify_add_watch(inotify.number(), name.c_str(), watchedEvents) < 0) return nullptr;
  return std::unique_ptr<FileWatch>(
      new FileWatch(path, FileStamp::of(status), std::move(inotify), std::move(handler), std::move(missed)));
}

FileWatch::FileWatch(std::filesystem::path path, const FileStamp& file, posix::FileDescriptor inotify,
                     std::function<void()> handler, std::function<void()> missed)
    : path_(std::move(path)),
      file_(file),
      inotify_(std::move(inotify)),
      handler_(std::move(handler)),
      missed_(std::move(missed)),
      source_(std::make_unique<ReadableSource>(
          inotify_.number(), G_PRIORITY_DEFAULT, [this] { collect(); }, true)) {}

FileWatch::~FileWatch() {
  FileWatch::cancel();
}

void FileWatch::cancel() {
  catchUp_.reset();
  stopCollecting();
  auto news = std::exchange(collected_, {});
  if (source_) {
    source_.reset();
    const auto late = readEvents();
    news.written = news.written || late.written;
    news.gone = news.gone || late.gone;
  }
  if (news.written || news.gone) missed_();
}

void FileWatch::collect() {
  const auto news = readEvents();
  if (news.gone) source_.reset();  // the path now names another file or none
  if (!news.written && !news.gone) return;
  if (!collected_.written && !collected_.gone) collectingSince_ = g_get_monotonic_time();
  collected_.written = collected_.written || news.written;
  collected_.gone = collected_.gone || news.gone;
  stopCollecting();
  const auto age = int((g_get_monotonic_time() - collectingSince_) / 1000);
  if (age >= longest) return deliver();
  const auto end = +[](gpointer watch) -> gboolean {
    static_cast<FileWatch*>(watch)->timer_ = 0;
    static_cast<FileWatch*>(watch)->deliver();
    return G_SOURCE_REMOVE;
  };
  timer_ = g_timeout_add(guint(std::min(quiet, longest - age)), end, this);
}

void FileWatch::stopCollecting() {
  if (timer_ != 0) g_source_remove(std::exchange(timer_, 0));
}

void FileWatch::deliver() {
  collected_ = {};
  runHandler();
}

void FileWatch::runHandler() {
  const auto handler = handler_;  // a copy: it may destroy this watch
  handler();
}

void FileWatch::notifySoon(platform::MainLoop& loop) {
  catchUp_ = loop.schedule({}, false, platform::TimerMode::commonModes, [this] { runHandler(); });
}

FileWatch::News FileWatch::readEvents() {
  News news;
  alignas(inotify_event) std::array<char, 4096> batch{};
  ssize_t size = 0;
  while ((size = read(inotify_.number(), batch.data(), batch.size())) > 0) {
    for (std::size_t at = 0; at < static_cast<std::size_t>(size);) {
      const auto* event = reinterpret_cast<const inotify_event*>(batch.data() + at);
      at += sizeof(inotify_event) + event->len;
      if ((event->mask & (IN_MODIFY | IN_Q_OVERFLOW)) != 0) news.written = true;
      if ((event->mask & (IN_MOVE_SELF | IN_DELETE_SELF | IN_UNMOUNT)) != 0) news.gone = true;
      if ((event->mask & IN_ATTRIB) != 0 && wasUnlinked()) news.gone = true;
    }
  }
  return news;
}

/// For a file that is deleted or replaced while it is open or has another hard link, inotify reports a
/// changed attribute only, the same as for changed permissions.
bool FileWatch::wasUnlinked() {
  const auto now = FileStamp::of(path_);
  if (!now || !now->isSameFile(file_)) return true;
  const bool lostLink = now->links < file_.links;
  file_.links = now->links;
  return lostLink;
}

}  // namespace keyvora::x11
