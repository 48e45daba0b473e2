#include "hosts/x11/loop/glib_source.h"

#include <glib-unix.h>

#include <utility>

namespace keyvora::x11 {
namespace {

using Block = std::function<void()>;

gboolean run(gint /*fileDescriptor*/, GIOCondition /*condition*/, gpointer block) {
  (*static_cast<Block*>(block))();
  return G_SOURCE_CONTINUE;
}

}  // namespace

ReadableSource::ReadableSource(int fileDescriptor, int priority, std::function<void()> block)
    : source_(g_unix_fd_source_new(fileDescriptor, G_IO_IN)) {
  // GLib keeps the block until the dispatch that destroys the source has returned.
  g_source_set_callback(source_, reinterpret_cast<GSourceFunc>(reinterpret_cast<void (*)()>(run)),
                        new Block(std::move(block)), [](gpointer kept) { delete static_cast<Block*>(kept); });
  g_source_set_priority(source_, priority);
  g_source_attach(source_, nullptr);
}

ReadableSource::~ReadableSource() {
  g_source_destroy(source_);
  g_source_unref(source_);
}

}  // namespace keyvora::x11
