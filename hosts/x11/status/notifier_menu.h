#pragma once

#include <functional>
#include <map>

#include "hosts/x11/gobject.h"
#include "hosts/x11/status/bus_object.h"
#include "platform/menu.h"

namespace keyvora::x11 {

/// The menu of a status notifier item: its rows on the session bus, for panels that draw menus themselves
/// (com.canonical.dbusmenu). Main thread.
class NotifierMenu {
 public:
  static constexpr auto path = "/MenuBar";

  /// `onTracking` is called when a panel has opened the menu and when it has closed it; `run` runs a row's
  /// action after the panel has got its answer.
  NotifierMenu(GDBusConnection* bus, std::function<void(bool isOpen)> onTracking,
               std::function<void(std::function<void()> action)> run);

  /// Replaces the rows, also in an open menu. Rows that look different in any way get new identifiers, all of
  /// them, so that a click on a row of the earlier menu does nothing. A menu that looks the same, as after
  /// most reloads, gets the new actions, and the panel is not made to read it again.
  void setRows(const platform::Menu& menu);

 private:
  GVariant* call(std::string_view method, GVariant* parameters);
  GVariant* getLayout(GVariant* parameters) const;
  GVariant* getGroupProperties(GVariant* parameters) const;
  GVariant* event(GVariant* parameters);
  GVariant* eventGroup(GVariant* parameters);
  bool happened(int identifier, std::string_view what);
  [[nodiscard]] GVariant* layoutOf(int identifier, bool withChildren) const;
  [[nodiscard]] GVariant* propertiesOf(int identifier) const;
  [[nodiscard]] bool isKnown(int identifier) const;

  BusObject object_;
  std::function<void(bool)> onTracking_;
  std::function<void(std::function<void()>)> run_;
  std::map<int, platform::MenuRow> rows_;
  int nextIdentifier_ = 1;
  unsigned revision_ = 0;
};

}  // namespace keyvora::x11
