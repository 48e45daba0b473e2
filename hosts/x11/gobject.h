#pragma once

#include <glib-object.h>

#include <memory>

/// Owners of GLib's objects and strings.
namespace keyvora::x11 {

struct GObjectUnref {
  void operator()(gpointer object) const { g_object_unref(object); }
};

struct GFree {
  void operator()(gpointer memory) const { g_free(memory); }
};

struct GErrorFree {
  void operator()(GError* error) const { g_error_free(error); }
};

struct GVariantUnref {
  void operator()(GVariant* value) const { g_variant_unref(value); }
};

/// One reference to an object; null for none.
template <class T>
using GObjectRef = std::unique_ptr<T, GObjectUnref>;

/// A string that GLib allocated; null for none.
using GText = std::unique_ptr<char, GFree>;

/// A value of D-Bus's types; null for none.
using GVariantRef = std::unique_ptr<GVariant, GVariantUnref>;

/// A GError; null without an error. Pass `&raw` of a new pointer to the call and wrap it at once.
using GErrorRef = std::unique_ptr<GError, GErrorFree>;

}  // namespace keyvora::x11
