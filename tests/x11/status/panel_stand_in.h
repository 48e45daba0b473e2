#pragma once

#include <string>
#include <vector>

#include "hosts/x11/gobject.h"
#include "hosts/x11/status/bus_object.h"

namespace keyvora::x11 {

/// A panel as seen on the session bus: the watcher, its host, and the panel's calls to an item. It answers
/// while the test runs the main loop.
class PanelStandIn {
 public:
  struct Kind {
    bool hasHost = true;
    bool isGnome = false;
  };

  explicit PanelStandIn(Kind kind);
  /// Leaves the bus at once, as in a crash.
  ~PanelStandIn();
  PanelStandIn(const PanelStandIn&) = delete;
  PanelStandIn& operator=(const PanelStandIn&) = delete;

  /// Registers or removes the host; the watcher stays.
  void setHost(bool isThere);

  /// The names of the items that were registered, the newest last.
  [[nodiscard]] const std::vector<std::string>& registered() const { return registered_; }

  /// Waits until an item is registered, after `before` others.
  bool awaitItem(std::size_t before = 0);

  /// A property of the newest item.
  GVariantRef property(const char* name);

  /// Calls a method of the newest item or of its menu; null on failure, with the reason in `error`.
  GVariantRef callItem(const char* method, GVariant* parameters);
  GVariantRef callMenu(const char* method, GVariant* parameters);
  std::string error;

  /// A row of the menu, as received.
  struct Row {
    int identifier = 0;
    std::string text;
  };
  std::vector<Row> rows();

  /// How many times an item has said that its menu must be read again.
  [[nodiscard]] int layouts() const { return layouts_; }

  /// Says that an item is not registered any more.
  void drop(const char* item);

  /// Reports an event of a row, as the panel does.
  void event(int identifier, const char* what);

 private:
  GVariantRef call(const char* path, const char* interface, const char* method, GVariant* parameters);

  GObjectRef<GDBusConnection> bus_;
  bool hasHost_;
  int layouts_ = 0;
  std::vector<std::string> registered_;
  std::unique_ptr<BusObject> watcher_;
};

}  // namespace keyvora::x11
