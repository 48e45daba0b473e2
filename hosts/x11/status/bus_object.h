#pragma once

#include <gio/gio.h>

#include <functional>
#include <optional>
#include <string_view>

namespace keyvora::x11 {

/// An object of ours on a message bus, with one interface. Taken off the bus by its destructor. Main thread.
class BusObject {
 public:
  struct Handlers {
    /// Answers a call with a tuple; null for a method that this object does not have.
    std::function<GVariant*(std::string_view method, GVariant* parameters)> call;
    /// The value of a property; null for one that this object does not have.
    std::function<GVariant*(std::string_view property)> get;
  };

  /// `description` is the interface as introspection data, in XML. What the bus does not take, because the
  /// connection has ended, is not there.
  BusObject(GDBusConnection* bus, const char* path, const char* description, Handlers handlers);
  ~BusObject();
  BusObject(const BusObject&) = delete;
  BusObject& operator=(const BusObject&) = delete;

  /// Sends a signal to whoever listens. Takes over a floating `parameters`; null for none.
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
