#include "hosts/x11/status/notifier_host.h"

#include <utility>

namespace keyvora::x11 {
namespace {

constexpr auto watcher = "org.kde.StatusNotifierWatcher";
constexpr auto watcherPath = "/StatusNotifierWatcher";
constexpr auto gnomeShell = "org.gnome.Shell";

/// A watcher that takes longer to answer counts as absent.
constexpr int timeoutMilliseconds = 5000;

/// How often an item that the watcher drops is registered.
constexpr int mostRegistrations = 5;

/// The answer to a call; null when it failed. `cancelled` is set when the object that made the call was
/// destroyed.
GVariantRef finish(GObject* bus, GAsyncResult* result, bool& cancelled) {
  GError* raw = nullptr;
  GVariantRef answer(g_dbus_connection_call_finish(G_DBUS_CONNECTION(bus), result, &raw));
  const GErrorRef error(raw);
  cancelled = error && g_error_matches(error.get(), G_IO_ERROR, G_IO_ERROR_CANCELLED) != FALSE;
  return answer;
}

}  // namespace

NotifierHost::NotifierHost(std::function<void()> onChange)
    : onChange_(std::move(onChange)), cancellable_(g_cancellable_new()) {
  g_bus_get(G_BUS_TYPE_SESSION, cancellable_.get(), connected, this);
}

NotifierHost::~NotifierHost() {
  g_cancellable_cancel(cancellable_.get());
  lost();
}

void NotifierHost::connected(GObject* /*source*/, GAsyncResult* result, gpointer self) {
  GError* raw = nullptr;
  GObjectRef<GDBusConnection> bus(g_bus_get_finish(result, &raw));
  const GErrorRef error(raw);
  if (error && g_error_matches(error.get(), G_IO_ERROR, G_IO_ERROR_CANCELLED)) return;
  auto* host = static_cast<NotifierHost*>(self);
  if (bus) {
    host->follow(bus.release());
  } else {
    host->set(false);
  }
}

void NotifierHost::follow(GDBusConnection* bus) {
  bus_.reset(bus);
  g_dbus_connection_set_exit_on_close(bus, FALSE);  // keyvora goes on when the bus ends
  const auto closed = +[](GDBusConnection*, gboolean, GError*, NotifierHost* self) {
    self->lost();
    self->set(false);
  };
  closed_ = g_signal_connect(bus, "closed", G_CALLBACK(closed), this);
  const auto signalled = +[](GDBusConnection*, const char*, const char*, const char*, const char* name,
                             GVariant* parameters, gpointer self) {
    auto* host = static_cast<NotifierHost*>(self);
    const char* item = nullptr;
    if (std::string_view(name) == "StatusNotifierItemUnregistered" &&
        g_variant_is_of_type(parameters, G_VARIANT_TYPE("(s)"))) {
      g_variant_get(parameters, "(&s)", &item);
      host->itemDropped(item);
    } else {
      host->askForHost();
    }
  };
  hostSignals_ = g_dbus_connection_signal_subscribe(bus, watcher, watcher, nullptr, watcherPath, nullptr,
                                                    G_DBUS_SIGNAL_FLAGS_NONE, signalled, this, nullptr);
  watch_ = g_bus_watch_name_on_connection(bus, watcher, G_BUS_NAME_WATCHER_FLAGS_NONE, appeared, vanished,
                                          this, nullptr);
}

/// Releases the bus.
void NotifierHost::lost() {
  if (!bus_) return;
  g_bus_unwatch_name(std::exchange(watch_, 0));
  g_dbus_connection_signal_unsubscribe(bus_.get(), std::exchange(hostSignals_, 0));
  g_signal_handler_disconnect(bus_.get(), std::exchange(closed_, 0));
  bus_.reset();
  owner_.clear();
}

void NotifierHost::appeared(GDBusConnection* /*bus*/, const char* /*name*/, const char* owner,
                            gpointer self) {
  auto* host = static_cast<NotifierHost*>(self);
  host->owner_ = owner;
  if (host->isPresent_) host->set(false);  // the answer came from an earlier watcher
  host->call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "GetNameOwner",
             g_variant_new("(s)", gnomeShell), "(s)", shellAnswered);
}

void NotifierHost::vanished(GDBusConnection* /*bus*/, const char* /*name*/, gpointer self) {
  auto* host = static_cast<NotifierHost*>(self);
  host->owner_.clear();
  host->set(false);
}

void NotifierHost::shellAnswered(GObject* bus, GAsyncResult* result, gpointer self) {
  bool cancelled = false;
  const auto answer = finish(bus, result, cancelled);
  if (cancelled) return;
  auto* host = static_cast<NotifierHost*>(self);
  const char* owner = "";
  if (answer) g_variant_get(answer.get(), "(&s)", &owner);
  host->isGnome_ = host->owner_ == owner;
  host->askForHost();
}

void NotifierHost::askForHost() {
  if (owner_.empty()) return;
  call(owner_.c_str(), watcherPath, "org.freedesktop.DBus.Properties", "Get",
       g_variant_new("(ss)", watcher, "IsStatusNotifierHostRegistered"), "(v)", hostAnswered);
}

void NotifierHost::hostAnswered(GObject* bus, GAsyncResult* result, gpointer self) {
  bool cancelled = false;
  const auto answer = finish(bus, result, cancelled);
  if (cancelled) return;
  bool isRegistered = false;
  if (answer) {
    GVariant* raw = nullptr;
    g_variant_get(answer.get(), "(v)", &raw);
    const GVariantRef value(raw);
    isRegistered = g_variant_is_of_type(value.get(), G_VARIANT_TYPE_BOOLEAN) &&
                   g_variant_get_boolean(value.get()) != FALSE;
  }
  auto* host = static_cast<NotifierHost*>(self);
  host->set(isRegistered && !host->owner_.empty());
}

void NotifierHost::set(bool isPresent) {
  if (std::exchange(isKnown_, true) && isPresent == isPresent_) return;
  isPresent_ = isPresent;
  onChange_();
}

void NotifierHost::registerItem(const std::string& name) {
  item_ = name;
  registrationsLeft_ = mostRegistrations;
  sendItem();
}

void NotifierHost::sendItem() {
  if (!bus_ || owner_.empty()) return;
  --registrationsLeft_;
  call(owner_.c_str(), watcherPath, watcher, "RegisterStatusNotifierItem",
       g_variant_new("(s)", item_.c_str()), nullptr, nullptr);
}

/// Watchers list an item by its name or by its connection, some with the object's path after it.
void NotifierHost::itemDropped(std::string_view item) {
  if (item_.empty() || registrationsLeft_ == 0) return;
  const std::string_view connection = g_dbus_connection_get_unique_name(bus_.get());
  const auto listed = item.substr(0, item.find('/'));
  if (listed == item_ || listed == connection) sendItem();
}

void NotifierHost::call(const char* destination, const char* path, const char* interface, const char* method,
                        GVariant* parameters, const char* answerType, GAsyncReadyCallback answered) {
  g_dbus_connection_call(bus_.get(), destination, path, interface, method, parameters,
                         answerType == nullptr ? nullptr : G_VARIANT_TYPE(answerType),
                         G_DBUS_CALL_FLAGS_NO_AUTO_START, timeoutMilliseconds, cancellable_.get(), answered,
                         this);
}

}  // namespace keyvora::x11
