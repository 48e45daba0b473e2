#pragma once

#include <functional>
#include <string>

#include "hosts/x11/status/bus_object.h"

namespace keyvora::x11 {

/// The item as panels read it on the session bus (org.kde.StatusNotifierItem): icons drawn for each size, a
/// tool tip with the whole text, names for assistive tools. Main thread.
class NotifierItem {
 public:
  static constexpr auto path = "/StatusNotifierItem";

  /// Adaptations to the panel that will show it.
  struct Manner {
    /// The letters go into a label beside the icon, which shows only the sign.
    bool hasLabel = false;
    /// Clicks open the panel's menu: the methods for another menu are not offered.
    bool panelOpensMenu = false;
  };

  /// `openMenu` is called with a position on the screen when a click asks for keyvora's own menu.
  NotifierItem(GDBusConnection* bus, Manner manner, std::function<void(int x, int y)> openMenu);

  /// UTF-8. Setting the same title again sends nothing.
  void setTitle(const std::string& title);
  void setDetails(const std::string& details);

 private:
  GVariant* call(std::string_view method, GVariant* parameters);
  [[nodiscard]] GVariant* get(std::string_view property) const;
  [[nodiscard]] std::string iconTitle() const;
  [[nodiscard]] std::string label() const;

  BusObject object_;
  Manner manner_;
  std::function<void(int x, int y)> openMenu_;
  std::string title_;
  std::string details_;
};

}  // namespace keyvora::x11
