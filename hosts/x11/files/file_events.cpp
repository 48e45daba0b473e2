#include "hosts/x11/files/file_events.h"

#include <glib.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <utility>

namespace keyvora::x11 {
namespace {

constexpr std::uint32_t watchedEvents = IN_MODIFY | IN_ATTRIB | IN_MOVE_SELF | IN_DELETE_SELF;

/// The number in reports that are about no single file, as when reports were lost.
constexpr int everyFile = -1;

}  // namespace

std::shared_ptr<FileEvents> FileEvents::open() {
  posix::FileDescriptor inotify(inotify_init1(IN_CLOEXEC | IN_NONBLOCK));
  return inotify.isOpen() ? std::make_shared<FileEvents>(std::move(inotify)) : nullptr;
}

FileEvents::FileEvents(posix::FileDescriptor inotify)
    : inotify_(std::move(inotify)),
      source_(
          inotify_.number(), G_PRIORITY_DEFAULT, [this] { read(); }, true) {}

bool FileEvents::add(const char* path, Listener& listener) {
  // What happened to the file before is for its other listeners only.
  if (!entries_.empty()) read();
  const int number = inotify_add_watch(inotify_.number(), path, watchedEvents);
  if (number < 0) return false;
  entries_.push_back({number, &listener, 0});
  return true;
}

void FileEvents::remove(Listener& listener) {
  const auto found = find(listener);
  if (found == entries_.end()) return;
  // Ended first, so that no report comes after those that are read now.
  if (!isShared(*found)) inotify_rm_watch(inotify_.number(), found->number);
  read();
  drop(listener);
}

/// Reads and reports everything that is there. What the kernel reports about the end of a watch is read, too,
/// or it would cost a turn of the loop.
void FileEvents::read() {
  do {
    while (readBatch()) continue;
  } while (report());
}

/// False when there was nothing to read.
bool FileEvents::readBatch() {
  alignas(inotify_event) std::array<char, 4096> batch;
  const auto size = ::read(inotify_.number(), batch.data(), batch.size());
  if (size <= 0) return false;
  for (std::size_t at = 0; at < static_cast<std::size_t>(size);) {
    const auto* event = reinterpret_cast<const inotify_event*>(batch.data() + at);
    at += sizeof(inotify_event) + event->len;
    for (auto& entry : entries_) {
      if (event->wd == entry.number || event->wd == everyFile) entry.events |= event->mask;
    }
  }
  return true;
}

/// True when a watch was ended, which the kernel reports.
bool FileEvents::report() {
  std::vector<const Listener*> done;
  for (auto& entry : entries_) {
    const auto events = std::exchange(entry.events, 0);
    if (events == 0) continue;
    const bool goesOn = entry.listener->happened(events);
    if ((events & IN_IGNORED) != 0) entry.number = everyFile;  // the kernel ended the watch by itself
    if (!goesOn || entry.number == everyFile) done.push_back(entry.listener);
  }
  bool ended = false;
  for (const auto* listener : done) ended = drop(*listener) || ended;
  return ended;
}

/// True when that ended the watch, because nobody else listens to its file.
bool FileEvents::drop(const Listener& listener) {
  const auto found = find(listener);
  if (found == entries_.end()) return false;
  const bool ends = found->number != everyFile && !isShared(*found) &&
                    inotify_rm_watch(inotify_.number(), found->number) == 0;
  entries_.erase(found);
  return ends;
}

std::vector<FileEvents::Entry>::iterator FileEvents::find(const Listener& listener) {
  return std::find_if(entries_.begin(), entries_.end(),
                      [&](const Entry& entry) { return entry.listener == &listener; });
}

/// Whether others listen to the same file.
bool FileEvents::isShared(const Entry& entry) const {
  return std::any_of(entries_.begin(), entries_.end(),
                     [&](const Entry& other) { return &other != &entry && other.number == entry.number; });
}

}  // namespace keyvora::x11
