#include "hosts/x11/status/tray_advice.h"

#include <array>

namespace keyvora::x11 {
namespace {

struct Advice {
  /// The name in XDG_CURRENT_DESKTOP, which may list several, separated by colons.
  std::string_view desktop;
  std::string_view whatToDo;
};

constexpr std::array advices{
    Advice{"GNOME",
           "install gnome-shell-extension-appindicator, log in again and "
           "switch it on in the program Extensions"},
    Advice{"XFCE",
           "add the Status Tray Plugin to the panel (right click on the panel, Panel, Add New Items)"},
    Advice{"KDE", "add the System Tray to a panel (right click on the panel, Add Widgets)"},
    Advice{"LXQt", "add the Status Notifier Plugin to the panel (right click on the panel, Manage Widgets)"},
    Advice{"MATE", "add the Notification Area to the panel (right click on the panel, Add to Panel)"},
    Advice{"LXDE", "add the System Tray to the panel (right click on the panel, Add / Remove Panel Items)"},
    Advice{"X-Cinnamon", "add the System Tray to the panel (right click on the panel, Applets)"},
    Advice{"Budgie", "add the System Tray to the panel in Budgie Desktop Settings"},
    Advice{"i3", "give a bar of the configuration the line \"tray_output primary\""},
    Advice{"sway", "start a bar with a tray, such as waybar with the module \"tray\""},
};

constexpr std::string_view elsewhere =
    "start a panel that shows status items, such as xfce4-panel, or a system tray, such as trayer";

bool lists(std::string_view currentDesktop, std::string_view desktop) {
  return (":" + std::string(currentDesktop) + ":").find(":" + std::string(desktop) + ":") !=
         std::string::npos;
}

std::string_view whatToDo(std::string_view currentDesktop) {
  for (const auto& advice : advices) {
    if (lists(currentDesktop, advice.desktop)) return advice.whatToDo;
  }
  return elsewhere;
}

}  // namespace

std::string noTrayAdvice(std::string_view currentDesktop) {
  return "no tray: to see keyvora's letters and menu, " + std::string(whatToDo(currentDesktop)) +
         ". Key sequences work without it; \"pkill -x keyvora\" ends keyvora.";
}

}  // namespace keyvora::x11
