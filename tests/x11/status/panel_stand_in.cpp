#include "tests/x11/status/panel_stand_in.h"

#include <stdexcept>

#include "tests/x11/private_display.h"

namespace keyvora::x11 {
namespace {

constexpr auto description = R"xml(
<node><interface name="org.kde.StatusNotifierWatcher">
  <property name="IsStatusNotifierHostRegistered" type="b" access="read"/>
  <method name="RegisterStatusNotifierItem"><arg type="s" direction="in"/></method>
  <signal name="StatusNotifierHostRegistered"/>
  <signal name="StatusNotifierHostUnregistered"/>
  <signal name="StatusNotifierItemUnregistered"><arg type="s"/></signal>
</interface></node>
)xml";

constexpr int limitMilliseconds = 20000;

GObjectRef<GDBusConnection> connect() {
  const GText address(g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SESSION, nullptr, nullptr));
  GObjectRef<GDBusConnection> bus;
  // The socket of a starting bus exists before it accepts connections.
  const bool connected = runUntil([&] {
    bus.reset(g_dbus_connection_new_for_address_sync(
        address.get(),
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, nullptr));
    return bus != nullptr;
  });
  if (!connected) throw std::runtime_error("no session bus");
  return bus;
}

void own(GDBusConnection* bus, const char* name) {
  const GVariantRef answer(g_dbus_connection_call_sync(
      bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName",
      g_variant_new("(su)", name, 0), nullptr, G_DBUS_CALL_FLAGS_NONE, limitMilliseconds, nullptr, nullptr));
  if (!answer) throw std::runtime_error(std::string("no name ") + name);
}

std::string describe(GVariant* properties) {
  GVariantDict row;
  g_variant_dict_init(&row, properties);
  const char* text = nullptr;
  gboolean enabled = TRUE;
  std::string described;
  if (g_variant_dict_lookup(&row, "type", "&s", &text)) described = text;
  if (g_variant_dict_lookup(&row, "label", "&s", &text)) described = text;
  if (g_variant_dict_lookup(&row, "enabled", "b", &enabled) && enabled == FALSE) described += " (disabled)";
  gint state = 0;
  if (g_variant_dict_lookup(&row, "toggle-state", "i", &state) && state == 1) described += " (checked)";
  if (const GVariantRef keys(g_variant_dict_lookup_value(&row, "shortcut", nullptr)); keys) {
    const GText printed(g_variant_print(keys.get(), FALSE));
    described += std::string(" ") + printed.get();
  }
  g_variant_dict_clear(&row);
  return described;
}

}  // namespace

PanelStandIn::PanelStandIn(Kind kind) : bus_(connect()), hasHost_(kind.hasHost) {
  const auto call = [this](std::string_view, GVariant* parameters) {
    const char* name = nullptr;
    g_variant_get(parameters, "(&s)", &name);
    registered_.emplace_back(name);
    return g_variant_new_tuple(nullptr, 0);
  };
  const auto get = [this](std::string_view) { return g_variant_new_boolean(hasHost_); };
  watcher_ = std::make_unique<BusObject>(bus_.get(), "/StatusNotifierWatcher", description,
                                         BusObject::Handlers{call, get});
  const auto count = +[](GDBusConnection*, const char*, const char*, const char*, const char*, GVariant*,
                         gpointer self) { ++static_cast<PanelStandIn*>(self)->layouts_; };
  g_dbus_connection_signal_subscribe(bus_.get(), nullptr, "com.canonical.dbusmenu", "LayoutUpdated",
                                     "/MenuBar", nullptr, G_DBUS_SIGNAL_FLAGS_NONE, count, this, nullptr);
  if (kind.isGnome) own(bus_.get(), "org.gnome.Shell");
  own(bus_.get(), "org.kde.StatusNotifierWatcher");
}

PanelStandIn::~PanelStandIn() {
  watcher_.reset();
  g_dbus_connection_close_sync(bus_.get(), nullptr, nullptr);
}

void PanelStandIn::setHost(bool isThere) {
  hasHost_ = isThere;
  watcher_->emit(isThere ? "StatusNotifierHostRegistered" : "StatusNotifierHostUnregistered", nullptr);
}

void PanelStandIn::drop(const char* item) {
  watcher_->emit("StatusNotifierItemUnregistered", g_variant_new("(s)", item));
}

bool PanelStandIn::awaitItem(std::size_t before) {
  return runUntil([&] { return registered_.size() > before; });
}

GVariantRef PanelStandIn::property(const char* name) {
  const auto answer = call("/StatusNotifierItem", "org.freedesktop.DBus.Properties", "Get",
                           g_variant_new("(ss)", "org.kde.StatusNotifierItem", name));
  if (!answer) return nullptr;
  GVariant* value = nullptr;
  g_variant_get(answer.get(), "(v)", &value);
  return GVariantRef(value);
}

GVariantRef PanelStandIn::callItem(const char* method, GVariant* parameters) {
  return call("/StatusNotifierItem", "org.kde.StatusNotifierItem", method, parameters);
}

GVariantRef PanelStandIn::callMenu(const char* method, GVariant* parameters) {
  return call("/MenuBar", "com.canonical.dbusmenu", method, parameters);
}

std::vector<PanelStandIn::Row> PanelStandIn::rows() {
  std::vector<Row> rows;
  const auto answer = callMenu("GetLayout", g_variant_new("(ii@as)", 0, -1, g_variant_new_strv(nullptr, 0)));
  if (!answer) return rows;
  GVariantIter* children = nullptr;
  g_variant_get(answer.get(), "(u(ia{sv}av))", nullptr, nullptr, nullptr, &children);
  GVariant* child = nullptr;
  while (g_variant_iter_next(children, "v", &child)) {
    const GVariantRef held(child);
    const GVariantRef properties(g_variant_get_child_value(child, 1));
    Row row;
    g_variant_get_child(child, 0, "i", &row.identifier);
    row.text = describe(properties.get());
    rows.push_back(row);
  }
  g_variant_iter_free(children);
  return rows;
}

void PanelStandIn::event(int identifier, const char* what) {
  callMenu("Event", g_variant_new("(isvu)", identifier, what, g_variant_new_int32(0), 0u));
}

GVariantRef PanelStandIn::call(const char* path, const char* interface, const char* method,
                               GVariant* parameters) {
  GError* raw = nullptr;
  GVariantRef answer(g_dbus_connection_call_sync(bus_.get(), registered_.back().c_str(), path, interface,
                                                 method, parameters, nullptr, G_DBUS_CALL_FLAGS_NONE,
                                                 limitMilliseconds, nullptr, &raw));
  const GErrorRef failure(raw);
  const GText name(failure ? g_dbus_error_get_remote_error(failure.get()) : nullptr);
  error = name ? name.get() : "";
  return answer;
}

}  // namespace keyvora::x11
