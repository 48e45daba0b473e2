#pragma once

#include <gio/gio.h>

#include <functional>
#include <optional>
#include <string_view>

namespace keyvora::x11 {

/// An object on a message bus, with one interface. The destructor removes it from the bus. Main thread.
class BusObject {
 public:
  struct Handlers {
    /// Returns a tuple that answers a call; null for an unknown method.
    std::function<GVariant*(std::string_view method, GVariant* parameters)> call;
    /// Returns the value of a property; null for an unknown one.
    std::function<GVariant*(std::string_view property)> get;
  };

  /// `description` is the interface as introspection data, in XML. If the connection has ended, the object
  /// is not registered.
  BusObject(GDBusConnection* bus, const char* path, const char* description, Handlers handlers);
  ~BusObject();
  BusObject(const BusObject&) = delete;
  BusObject& operator=(const BusObject&) = delete;

  /// Sends a signal to all listeners. Takes over a floating `parameters`; null for none.
  void emit(const char* signal, GVariant* parameters);

 private:
  static void call(GDBusConnection* bus, const char* sender, const char* path, const char* interface,
                   const char* method, GVariant* parameters, GDBusMethodInvocation* invocation,
                   gpointer self);
  static GVariant* get(GDBusConnection* bus, const char* sender, const char* path, const char* interface,
                       const char* property, GError** error, gpointer self);

  GDBusConnection* bus_;
  const char* path_;
  GDBusNodeInfo* description_;
  Handlers handlers_;
  guint registration_ = 0;
};

}  // namespace keyvora::x11
