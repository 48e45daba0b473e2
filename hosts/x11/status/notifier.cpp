#include "hosts/x11/status/notifier.h"

#include <unistd.h>

#include <utility>

#include "hosts/x11/toolkit.h"
#include "text/utf8.h"

namespace keyvora::x11 {
namespace {

/// GNOME draws a label, and would wait for a second click before it opens its menu. Under Wayland a menu of
/// keyvora cannot grab the keyboard.
NotifierItem::Manner mannerFor(const NotifierHost& host) {
  return {.hasLabel = host.isGnome(), .panelOpensMenu = host.isGnome() || isWaylandSession()};
}

/// The second part of the tool tip: the menu's first line.
std::string detailsOf(const platform::Menu& menu) {
  if (menu.rows.empty()) return "";
  const auto line = text::validText(menu.rows.front().title);
  const GText escaped(g_markup_escape_text(line.c_str(), -1));
  return escaped.get();
}

}  // namespace

Notifier::Notifier(MainLoop& loop, NotifierHost& host, std::function<void(int, int)> openMenu)
    : loop_(loop),
      host_(host),
      name_("org.kde.StatusNotifierItem-" + std::to_string(getpid()) + "-1"),
      item_(host.bus(), mannerFor(host), std::move(openMenu)),
      menu_(
          host.bus(), [this](bool isOpen) { track(isOpen); },
          [this](std::function<void()> action) { runSoon(std::move(action)); }) {
  const auto owned = +[](GDBusConnection*, const char* name, gpointer self) {
    static_cast<Notifier*>(self)->host_.registerItem(name);
  };
  ownership_ = g_bus_own_name_on_connection(host.bus(), name_.c_str(), G_BUS_NAME_OWNER_FLAGS_NONE, owned,
                                            nullptr, this, nullptr);
}

Notifier::~Notifier() {
  host_.forgetItem();
  g_bus_unown_name(ownership_);
  track(false);  // a panel that ended does not report its menu as closed
}

void Notifier::setMenu(const platform::Menu& menu) {
  menu_.setRows(menu);
  item_.setDetails(detailsOf(menu));
}

void Notifier::track(bool isOpen) {
  if (std::exchange(isTracking_, isOpen) == isOpen) return;
  isOpen ? loop_.beginTracking() : loop_.endTracking();
}

/// Runs after the panel has got its answer. The action may destroy this object.
void Notifier::runSoon(std::function<void()> action) {
  loop_.after({}, std::move(action));
}

}  // namespace keyvora::x11
