#include "hosts/x11/status/notifier_item.h"

#include <array>
#include <memory>
#include <utility>
#include <vector>

#include "hosts/x11/status/notifier_menu.h"
#include "hosts/x11/status/status_icon.h"

namespace keyvora::x11 {
namespace {

constexpr auto description = R"xml(
<node><interface name="org.kde.StatusNotifierItem">
  <property name="Category" type="s" access="read"/>
  <property name="Id" type="s" access="read"/>
  <property name="Title" type="s" access="read"/>
  <property name="Status" type="s" access="read"/>
  <property name="WindowId" type="i" access="read"/>
  <property name="IconName" type="s" access="read"/>
  <property name="IconThemePath" type="s" access="read"/>
  <property name="IconPixmap" type="a(iiay)" access="read"/>
  <property name="IconAccessibleDesc" type="s" access="read"/>
  <property name="OverlayIconName" type="s" access="read"/>
  <property name="OverlayIconPixmap" type="a(iiay)" access="read"/>
  <property name="AttentionIconName" type="s" access="read"/>
  <property name="AttentionIconPixmap" type="a(iiay)" access="read"/>
  <property name="AttentionMovieName" type="s" access="read"/>
  <property name="ToolTip" type="(sa(iiay)ss)" access="read"/>
  <property name="ItemIsMenu" type="b" access="read"/>
  <property name="Menu" type="o" access="read"/>
  <property name="XAyatanaLabel" type="s" access="read"/>
  <property name="XAyatanaLabelGuide" type="s" access="read"/>
  <method name="Activate">
    <arg name="x" type="i" direction="in"/>
    <arg name="y" type="i" direction="in"/>
  </method>
  <method name="ContextMenu">
    <arg name="x" type="i" direction="in"/>
    <arg name="y" type="i" direction="in"/>
  </method>
  <method name="SecondaryActivate">
    <arg name="x" type="i" direction="in"/>
    <arg name="y" type="i" direction="in"/>
  </method>
  <signal name="NewTitle"/>
  <signal name="NewIcon"/>
  <signal name="NewToolTip"/>
  <signal name="NewStatus"><arg name="status" type="s"/></signal>
  <signal name="XAyatanaNewLabel">
    <arg name="label" type="s"/>
    <arg name="guide" type="s"/>
  </signal>
</interface></node>
)xml";

/// In pixels: the sizes that panels use at the scales 1 and 2.
constexpr std::array iconSizes{16, 22, 24, 32, 48};

constexpr auto sign = "⌥";

struct SurfaceDestroy {
  void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};

/// Converts Cairo's pixels to the protocol's: big-endian ARGB without premultiplied alpha.
std::vector<unsigned char> plainPixels(const unsigned char* data, int stride, int size) {
  std::vector<unsigned char> bytes;
  bytes.reserve(static_cast<std::size_t>(size) * static_cast<std::size_t>(size) * 4);
  for (int y = 0; y < size; ++y) {
    const auto* row = reinterpret_cast<const std::uint32_t*>(data + std::ptrdiff_t(y) * stride);
    for (int x = 0; x < size; ++x) {
      const unsigned alpha = row[x] >> 24;
      bytes.push_back(static_cast<unsigned char>(alpha));
      for (const int shift : {16, 8, 0}) {
        const unsigned colour = (row[x] >> shift) & 0xFF;
        bytes.push_back(static_cast<unsigned char>(alpha == 0 ? 0 : (colour * 255 + alpha / 2) / alpha));
      }
    }
  }
  return bytes;
}

GVariant* pixmap(const StatusTitle& title, int size) {
  const std::unique_ptr<cairo_surface_t, SurfaceDestroy> surface(
      cairo_image_surface_create(CAIRO_FORMAT_ARGB32, size, size));
  cairo_t* context = cairo_create(surface.get());
  drawStatusIcon(context, title, size, size);
  cairo_destroy(context);
  cairo_surface_flush(surface.get());
  const auto bytes = plainPixels(cairo_image_surface_get_data(surface.get()),
                                 cairo_image_surface_get_stride(surface.get()), size);
  return g_variant_new("(ii@ay)", size, size,
                       g_variant_new_fixed_array(G_VARIANT_TYPE_BYTE, bytes.data(), bytes.size(), 1));
}

GVariant* noPixmaps() {
  return g_variant_new_array(G_VARIANT_TYPE("(iiay)"), nullptr, 0);
}

GVariant* pixmaps(const std::string& text) {
  const auto title = StatusTitle::of(text);
  GVariantBuilder builder;
  g_variant_builder_init(&builder, G_VARIANT_TYPE("a(iiay)"));
  for (const int size : iconSizes) g_variant_builder_add_value(&builder, pixmap(title, size));
  return g_variant_builder_end(&builder);
}

GVariant* text(const std::string& value) {
  return g_variant_new_string(value.c_str());
}

}  // namespace

NotifierItem::NotifierItem(GDBusConnection* bus, Manner manner, std::function<void(int, int)> openMenu)
    : object_(bus, path, description,
              {[this](std::string_view method, GVariant* parameters) { return call(method, parameters); },
               [this](std::string_view property) { return get(property); }}),
      manner_(manner),
      openMenu_(std::move(openMenu)) {}

void NotifierItem::setTitle(const std::string& title) {
  if (title == title_) return;
  const auto iconBefore = iconTitle();
  title_ = title;
  if (iconTitle() != iconBefore) object_.emit("NewIcon", nullptr);
  if (manner_.hasLabel) {
    object_.emit("XAyatanaNewLabel", g_variant_new("(ss)", label().c_str(), label().c_str()));
  }
  object_.emit("NewToolTip", nullptr);
}

void NotifierItem::setDetails(const std::string& details) {
  if (details == details_) return;
  details_ = details;
  object_.emit("NewToolTip", nullptr);
}

/// The part of the title that the icon shows.
std::string NotifierItem::iconTitle() const {
  if (!manner_.hasLabel || label().empty()) return title_;
  return std::string(sign) + " ";
}

std::string NotifierItem::label() const {
  return manner_.hasLabel ? StatusTitle::of(title_).letters : "";
}

GVariant* NotifierItem::call(std::string_view method, GVariant* parameters) {
  if (manner_.panelOpensMenu) return nullptr;
  int x = 0;
  int y = 0;
  g_variant_get(parameters, "(ii)", &x, &y);
  if (method == "Activate" || method == "ContextMenu" || method == "SecondaryActivate") openMenu_(x, y);
  return g_variant_new_tuple(nullptr, 0);
}

GVariant* NotifierItem::get(std::string_view property) const {
  if (property == "Category") return text("ApplicationStatus");
  if (property == "Id" || property == "Title") return text("keyvora");
  if (property == "Status") return text("Active");
  if (property == "WindowId") return g_variant_new_int32(0);
  if (property == "IconPixmap") return pixmaps(iconTitle());
  if (property == "IconAccessibleDesc") return text(title_);
  if (property == "ToolTip") {
    return g_variant_new("(s@a(iiay)ss)", "", noPixmaps(), title_.c_str(), details_.c_str());
  }
  if (property == "ItemIsMenu") return g_variant_new_boolean(FALSE);
  if (property == "Menu") return g_variant_new_object_path(NotifierMenu::path);
  if (property == "XAyatanaLabel" || property == "XAyatanaLabelGuide") return text(label());
  if (property.ends_with("Pixmap")) return noPixmaps();
  return text("");
}

}  // namespace keyvora::x11
