#import "hosts/macos/file_watch.h"

#include <fcntl.h>
#include <unistd.h>

#include "hosts/macos/guarded.h"

namespace keyvora::macos {

std::unique_ptr<FileWatch> FileWatch::open(const std::filesystem::path& path, std::function<void()> handler) {
  // O_EVTONLY without other flags, so that the watch does not keep the volume busy; close-on-exec is set
  // below.
  const int descriptor = ::open(path.c_str(), O_EVTONLY);
  if (descriptor < 0) return nullptr;
  ::fcntl(descriptor, F_SETFD, FD_CLOEXEC);
  dispatch_source_t source = dispatch_source_create(
      DISPATCH_SOURCE_TYPE_VNODE, static_cast<uintptr_t>(descriptor),
      DISPATCH_VNODE_WRITE | DISPATCH_VNODE_DELETE | DISPATCH_VNODE_RENAME, dispatch_get_main_queue());
  if (source == nil) {
    ::close(descriptor);
    return nullptr;
  }
  dispatch_source_set_event_handler(source, ^{
    guarded([&] { handler(); });
  });
  // Closed only here: if it were closed while its source exists, another file could get the same number.
  dispatch_source_set_cancel_handler(source, ^{
    ::close(descriptor);
  });
  dispatch_resume(source);
  return std::unique_ptr<FileWatch>(new FileWatch(source));
}

FileWatch::~FileWatch() { cancel(); }

void FileWatch::cancel() { dispatch_source_cancel(source_); }

}  // namespace keyvora::macos
