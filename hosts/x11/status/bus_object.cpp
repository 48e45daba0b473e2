#include "hosts/x11/status/bus_object.h"

#include <utility>

namespace keyvora::x11 {

BusObject::BusObject(GDBusConnection* bus, const char* path, const char* description, Handlers handlers)
    : bus_(bus),
      path_(path),
      description_(g_dbus_node_info_new_for_xml(description, nullptr)),
      handlers_(std::move(handlers)) {
  g_object_ref(bus_);
  static constexpr GDBusInterfaceVTable functions{call, get, nullptr, {}};
  registration_ = g_dbus_connection_register_object(bus_, path_, description_->interfaces[0], &functions,
                                                    this, nullptr, nullptr);
}

BusObject::~BusObject() {
  if (registration_ != 0) g_dbus_connection_unregister_object(bus_, registration_);
  g_dbus_node_info_unref(description_);
  g_object_unref(bus_);
}

void BusObject::emit(const char* signal, GVariant* parameters) {
  g_dbus_connection_emit_signal(bus_, nullptr, path_, description_->interfaces[0]->name, signal, parameters,
                                nullptr);
}

void BusObject::call(GDBusConnection* /*bus*/, const char* /*sender*/, const char* /*path*/,
                     const char* /*interface*/, const char* method, GVariant* parameters,
                     GDBusMethodInvocation* invocation, gpointer self) {
  GVariant* answer = static_cast<BusObject*>(self)->handlers_.call(method, parameters);
  if (answer != nullptr) {
    g_dbus_method_invocation_return_value(invocation, answer);
  } else {
    g_dbus_method_invocation_return_error(invocation, G_DBUS_ERROR, G_DBUS_ERROR_UNKNOWN_METHOD,
                                          "There is no method %s.", method);
  }
}

GVariant* BusObject::get(GDBusConnection* /*bus*/, const char* /*sender*/, const char* /*path*/,
                         const char* /*interface*/, const char* property, GError** error, gpointer self) {
  GVariant* value = static_cast<BusObject*>(self)->handlers_.get(property);
  if (value == nullptr) {
    g_set_error(error, G_DBUS_ERROR, G_DBUS_ERROR_UNKNOWN_PROPERTY, "There is no property %s.", property);
  }
  return value;
}

}  // namespace keyvora::x11
