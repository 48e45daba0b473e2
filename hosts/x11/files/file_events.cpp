#include "hosts/x11/files/file_events.h"

#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <climits>
#include <utility>

namespace keyvora::x11 {
namespace {

constexpr std::uint32_t watchedEvents = IN_MODIFY | IN_ATTRIB | IN_MOVE_SELF | IN_DELETE_SELF;

/// The number in reports that are about no single file, as when reports were lost.
constexpr int everyFile = -1;

/// The number of a listener that hears no more.
constexpr int noFile = -2;

/// The most that one report takes.
constexpr std::size_t largestEvent = sizeof(inotify_event) + NAME_MAX + 1;

}  // namespace

std::shared_ptr<FileEvents> FileEvents::open(LoopWait& wait) {
  posix::FileDescriptor inotify(inotify_init1(IN_CLOEXEC | IN_NONBLOCK));
  return inotify.isOpen() ? std::make_shared<FileEvents>(wait, std::move(inotify)) : nullptr;
}

FileEvents::FileEvents(LoopWait& wait, posix::FileDescriptor inotify)
    : wait_(wait), inotify_(std::move(inotify)) {
  wait_.add(*this);
}

FileEvents::~FileEvents() {
  wait_.remove(*this);
}

bool FileEvents::add(const char* path, Listener& listener) {
  // What happened to the file before is for its other listeners only.
  if (!entries_.empty()) read();
  const int number = inotify_add_watch(inotify_.number(), path, watchedEvents);
  if (number < 0) return false;
  entries_.push_back({number, &listener, 0});
  return true;
}

void FileEvents::remove(Listener& listener) {
  const auto found = std::find_if(entries_.begin(), entries_.end(),
                                  [&](const Entry& entry) { return entry.listener == &listener; });
  if (found == entries_.end()) return;
  if (found->number != noFile) {
    // Ended first, so that no report comes after those that are read now.
    if (!isShared(*found)) inotify_rm_watch(inotify_.number(), found->number);
    read();
  }
  entries_.erase(found);
}

std::optional<FileEvents::Microseconds> FileEvents::due() const {
  std::optional<Microseconds> first;
  for (const auto& entry : entries_) {
    const auto due = entry.listener->due();
    if (due && (!first || *due < *first)) first = due;
  }
  return first;
}

/// True when a listener delivered what it had.
bool FileEvents::work() {
  read();
  bool delivered = false;
  while (auto* listener = firstDue(g_get_monotonic_time())) {
    listener->deliver();
    delivered = true;
  }
  return delivered;
}

/// Reads and reports everything that is there. What the kernel reports about the end of a watch is read, too,
/// or it would wake the loop.
void FileEvents::read() {
  do {
    while (readBatch()) continue;
  } while (report());
}

/// True when there may be more to read.
bool FileEvents::readBatch() {
  alignas(inotify_event) std::array<char, 4096> batch;
  const auto size = ::read(inotify_.number(), batch.data(), batch.size());
  if (size <= 0) return false;
  for (std::size_t at = 0; at < static_cast<std::size_t>(size);) {
    const auto* event = reinterpret_cast<const inotify_event*>(batch.data() + at);
    at += sizeof(inotify_event) + event->len;
    for (auto& entry : entries_) {
      const bool concerned = event->wd == entry.number || (event->wd == everyFile && entry.number != noFile);
      if (concerned) entry.events |= event->mask;
    }
  }
  return static_cast<std::size_t>(size) > batch.size() - largestEvent;
}

/// True when a watch was ended, which the kernel reports.
bool FileEvents::report() {
  bool ended = false;
  for (auto& entry : entries_) {
    const auto events = std::exchange(entry.events, 0);
    if (events == 0) continue;
    const bool goesOn = entry.listener->happened(events);
    if ((events & IN_IGNORED) != 0) entry.number = noFile;  // the kernel ended the watch by itself
    if (!goesOn) ended = end(entry) || ended;
  }
  return ended;
}

/// The listener hears no more. True when that ended the watch, because nobody else listens to its file.
bool FileEvents::end(Entry& entry) {
  const bool ends =
      entry.number != noFile && !isShared(entry) && inotify_rm_watch(inotify_.number(), entry.number) == 0;
  entry.number = noFile;
  return ends;
}

FileEvents::Listener* FileEvents::firstDue(Microseconds now) const {
  const auto found = std::find_if(entries_.begin(), entries_.end(), [now](const Entry& entry) {
    const auto due = entry.listener->due();
    return due && *due <= now;
  });
  return found == entries_.end() ? nullptr : found->listener;
}

/// Whether others listen to the same file.
bool FileEvents::isShared(const Entry& entry) const {
  return std::any_of(entries_.begin(), entries_.end(),
                     [&](const Entry& other) { return &other != &entry && other.number == entry.number; });
}

}  // namespace keyvora::x11
