#include "hosts/x11/applications/applications.h"

#include <algorithm>

#include "hosts/x11/applications/window_list.h"
#include "hosts/x11/applications/window_property.h"
#include "hosts/x11/display.h"
#include "hosts/x11/loop/glib_source.h"

namespace keyvora::x11 {

struct Applications::Watch {
  explicit Watch(std::unique_ptr<Connection> opened)
      : connection(std::move(opened)),
        windows(connection->get()),
        source(connection->fileDescriptor(), G_PRIORITY_DEFAULT, [this] { catchUp(); }) {
    catchUp();
  }

  /// Handles all events of the connection. None may stay in Xlib's queue, since the main context only
  /// watches the socket.
  void catchUp() {
    while (XPending(connection->get()) > 0) {
      XEvent event;
      XNextEvent(connection->get(), &event);
      windows.notice(event);
    }
  }

  std::unique_ptr<Connection> connection;
  WindowList windows;
  ReadableSource source;
};

Applications::Applications(const std::string& displayName, const TargetWindow& target) : target_(target) {
  if (auto connection = Connection::open(displayName))
    watch_ = std::make_unique<Watch>(std::move(connection));
}

Applications::~Applications() = default;

std::vector<platform::ProcessIdentifier> Applications::running(std::string_view bundleIdentifier) {
  std::vector<platform::ProcessIdentifier> processes;
  if (!watch_) return processes;
  watch_->catchUp();
  for (const auto& window : watch_->windows.windows()) {
    if (window.bundleIdentifier != bundleIdentifier || bundleIdentifier.empty() || window.process == 0)
      continue;
    if (std::ranges::find(processes, window.process) == processes.end()) processes.push_back(window.process);
  }
  const auto first = std::ranges::find(processes, watch_->windows.find(target_.get()).process);
  if (first != processes.end()) std::rotate(processes.begin(), first, first + 1);
  return processes;
}

std::optional<DocumentFrame> Applications::documentFrame() {
  if (!watch_) return std::nullopt;
  watch_->catchUp();
  const auto window = watch_->windows.find(watch_->windows.ownerOf(target_.get()));
  if (window.window == None) return std::nullopt;
  auto title = titleOf(watch_->connection->get(), window.window);
  if (!title) return std::nullopt;
  return DocumentFrame{window.process, std::move(*title), watch_->windows.active().window == window.window};
}

std::optional<std::string_view> Applications::frontmostBundleIdentifier() {
  if (!watch_) return std::nullopt;
  watch_->catchUp();
  const auto identifier = watch_->windows.active().bundleIdentifier;
  if (identifier.empty()) return std::nullopt;
  return identifier;
}

}  // namespace keyvora::x11
