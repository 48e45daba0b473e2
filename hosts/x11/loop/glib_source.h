#pragma once

#include <glib.h>

#include <functional>

namespace keyvora::x11 {

/// Runs a block on the main thread, from GLib's default main context, whenever a file descriptor is
/// readable. The destructor removes it. The block may destroy it. Main thread.
class ReadableSource {
 public:
  /// A block that runs the main loop itself is not run again inside that loop.
  ReadableSource(int fileDescriptor, int priority, std::function<void()> block);
  ~ReadableSource();
  ReadableSource(const ReadableSource&) = delete;
  ReadableSource& operator=(const ReadableSource&) = delete;

 private:
  GSource* source_;
};

}  // namespace keyvora::x11
