#include "hosts/x11/accessibility/exported_menus.h"

#include <X11/Xatom.h>
#include <gio/gio.h>

#include <algorithm>
#include <map>
#include <optional>
#include <string_view>
#include <utility>

#include "hosts/x11/applications/desktop_windows.h"
#include "hosts/x11/applications/window_property.h"
#include "hosts/x11/display.h"
#include "hosts/x11/gobject.h"

namespace keyvora::x11 {
namespace {

constexpr int limitMilliseconds = 200;
/// Sections may be nested; no real menu is deeper than this.
constexpr int deepestSection = 8;
/// More menus and sections than any application has.
constexpr int mostVisited = 2000;

struct VariantUnref {
  void operator()(GVariant* variant) const { g_variant_unref(variant); }
};
using Variant = std::unique_ptr<GVariant, VariantUnref>;

/// The location of a window's menus on the session bus.
struct Exported {
  std::string bus;
  std::string menus;
  std::string actions;
};

/// The numbers of a group of menus and of a menu in it.
using Place = std::pair<guint32, guint32>;

struct Row {
  std::string title;
  std::string openAction;
  std::optional<Place> section;
  std::optional<Place> submenu;
};

std::vector<Exported> exportedBy(platform::ProcessIdentifier process) {
  std::vector<Exported> found;
  const auto connection = Connection::open("");
  if (!connection) return found;
  auto* display = connection->get();
  for (const auto window : listedWindows(display).value_or(std::vector<Window>{})) {
    const auto owner = numbersOf(display, window, connection->atom("_NET_WM_PID"), XA_CARDINAL);
    if (!owner || owner->empty() || owner->front() != static_cast<unsigned long>(process)) continue;
    auto bus = textOf(display, window, connection->atom("_GTK_UNIQUE_BUS_NAME"));
    auto menus = textOf(display, window, connection->atom("_GTK_MENUBAR_OBJECT_PATH"));
    auto actions = textOf(display, window, connection->atom("_GTK_WINDOW_OBJECT_PATH"));
    if (!bus || !menus || !actions || !g_dbus_is_unique_name(bus->c_str()) ||
        !g_variant_is_object_path(menus->c_str()) || !g_variant_is_object_path(actions->c_str())) {
      continue;
    }
    found.push_back({std::move(*bus), std::move(*menus), std::move(*actions)});
  }
  return found;
}

/// A title as it is displayed: without the underscores of access keys.
std::string shown(std::string_view label) {
  std::string title;
  for (std::size_t index = 0; index < label.size(); ++index) {
    if (label[index] == '_' && ++index == label.size()) break;
    title += label[index];
  }
  return title;
}

std::string textIn(GVariant* row, const char* name) {
  const char* text = nullptr;
  return g_variant_lookup(row, name, "&s", &text) != FALSE ? text : "";
}

std::optional<Place> placeIn(GVariant* row, const char* name) {
  Place place;
  if (g_variant_lookup(row, name, "(uu)", &place.first, &place.second) == FALSE) return std::nullopt;
  return place;
}

/// The menus of one window.
class Menus {
 public:
  Menus(GDBusConnection* bus, const Exported& exported) : bus_(bus), exported_(exported) {}

  ~Menus() {
    for (const auto group : subscribed_)
      call(exported_.menus, "org.gtk.Menus", "End", groups(group), nullptr);
  }

  Menus(const Menus&) = delete;
  Menus& operator=(const Menus&) = delete;

  /// Opens and then closes each menu on the path.
  void refresh(const std::vector<std::string>& titles) {
    std::vector<std::string> opened;
    Place place{0, 0};
    for (const auto& title : titles) {
      const auto row = find(place, title, deepestSection);
      if (!row || !row->submenu || row->openAction.empty()) break;
      opened.push_back(row->openAction);
      setOpen(row->openAction, true);
      place = *row->submenu;
    }
    for (auto action = opened.rbegin(); action != opened.rend(); ++action) setOpen(*action, false);
  }

 private:
  std::optional<Row> find(Place place, const std::string& title, int depth) {
    load(place.first);
    const auto menu = menus_.find(place);
    if (menu == menus_.end() || depth == 0 || ++visited_ > mostVisited) return std::nullopt;
    for (const auto& row : menu->second) {
      if (!row.section && row.title == title) return row;
      if (!row.section) continue;
      if (auto found = find(*row.section, title, depth - 1)) return found;
    }
    return std::nullopt;
  }

  /// Reads a group of menus, once. The subscription this takes ends with this object.
  void load(guint32 group) {
    if (failed_ || std::ranges::find(subscribed_, group) != subscribed_.end()) return;
    const auto answer = call(exported_.menus, "org.gtk.Menus", "Start", groups(group), "(a(uuaa{sv}))");
    if (!answer) return;
    subscribed_.push_back(group);
    GVariantIter* menus = nullptr;
    g_variant_get(answer.get(), "(a(uuaa{sv}))", &menus);
    Place place;
    GVariantIter* rows = nullptr;
    while (g_variant_iter_loop(menus, "(uuaa{sv})", &place.first, &place.second, &rows) != FALSE) {
      auto& menu = menus_[place];
      while (const Variant row{g_variant_iter_next_value(rows)}) {
        menu.push_back({shown(textIn(row.get(), "label")), actionIn(row.get()),
                        placeIn(row.get(), ":section"), placeIn(row.get(), ":submenu")});
      }
    }
    g_variant_iter_free(menus);
  }

  /// The name of the action whose state says whether the row's menu is open, without the prefix of the
  /// window's actions.
  static std::string actionIn(GVariant* row) {
    constexpr std::string_view prefix = "win.";
    auto action = textIn(row, "submenu-action");
    return action.starts_with(prefix) ? action.substr(prefix.size()) : "";
  }

  void setOpen(const std::string& action, bool isOpen) {
    call(exported_.actions, "org.gtk.Actions", "SetState",
         g_variant_new("(sva{sv})", action.c_str(), g_variant_new_boolean(isOpen ? TRUE : FALSE), nullptr),
         nullptr);
  }

  static GVariant* groups(guint32 group) {
    return g_variant_new("(@au)", g_variant_new_fixed_array(G_VARIANT_TYPE_UINT32, &group, 1, sizeof group));
  }

  Variant call(const std::string& path, const char* interface, const char* method, GVariant* arguments,
               const char* answer) {
    const Variant owned{g_variant_ref_sink(arguments)};
    if (failed_) return nullptr;
    Variant result{
        g_dbus_connection_call_sync(bus_, exported_.bus.c_str(), path.c_str(), interface, method, owned.get(),
                                    answer != nullptr ? G_VARIANT_TYPE(answer) : nullptr,
                                    G_DBUS_CALL_FLAGS_NO_AUTO_START, limitMilliseconds, nullptr, nullptr)};
    failed_ = !result;
    return result;
  }

  GDBusConnection* bus_;
  const Exported& exported_;
  std::map<Place, std::vector<Row>> menus_;
  std::vector<guint32> subscribed_;
  int visited_ = 0;
  bool failed_ = false;
};

}  // namespace

bool refreshMenus(platform::ProcessIdentifier process, const std::vector<std::string>& menus) {
  const auto windows = exportedBy(process);
  if (windows.empty()) return false;
  const GObjectRef<GDBusConnection> bus(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr));
  if (!bus) return false;
  g_dbus_connection_set_exit_on_close(bus.get(), FALSE);
  for (const auto& window : windows) Menus(bus.get(), window).refresh(menus);
  return true;
}

}  // namespace keyvora::x11
