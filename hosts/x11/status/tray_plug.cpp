#include "hosts/x11/status/tray_plug.h"

#include <gtk/gtkx.h>

#include <algorithm>
#include <utility>

#include "hosts/x11/display.h"
#include "hosts/x11/gobject.h"
#include "hosts/x11/status/status_icon.h"
#include "hosts/x11/toolkit.h"

namespace keyvora::x11 {
namespace {

/// The text has its own background, so that it is legible in light and dark trays. No animations: they
/// would keep the process awake.
constexpr auto style = R"css(
  .keyvora-tray { background: transparent; }
  .keyvora-tray.opaque { background: #2e3436; }
  .keyvora-item {
    min-width: 0; min-height: 0; margin: 0; padding: 0 6px;
    border: none; border-radius: 4px; outline: none; box-shadow: none; text-shadow: none;
    background: #2e3436; color: #ffffff; transition: none; animation: none;
  }
  .keyvora-item:hover { background: #555753; }
)css";

void addStyle(GtkWidget* widget, const char* name) {
  const GObjectRef<GtkCssProvider> provider(gtk_css_provider_new());
  gtk_css_provider_load_from_data(provider.get(), style, -1, nullptr);
  auto* context = gtk_widget_get_style_context(widget);
  gtk_style_context_add_provider(context, GTK_STYLE_PROVIDER(provider.get()),
                                 GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
  gtk_style_context_add_class(context, name);
}

/// The tray's visual if it has transparency; null otherwise.
GdkVisual* transparentVisual(Tray& tray) {
  const auto identifier = tray.visual();
  if (!identifier) return nullptr;
  GdkVisual* visual = gdk_x11_screen_lookup_visual(gdk_screen_get_default(), *identifier);
  constexpr int depthWithAlpha = 32;
  if (visual == nullptr || gdk_visual_get_depth(visual) != depthWithAlpha) return nullptr;
  return visual;
}

/// When its tray ends, the window becomes a child of the root; window managers must ignore it there. GDK is
/// not told: it expects no events about the size of such a window, and draws only a part of it when the scale
/// has changed.
void ignoreByWindowManagers(GdkWindow* window) {
  XSetWindowAttributes attributes;
  attributes.override_redirect = True;
  XChangeWindowAttributes(GDK_WINDOW_XDISPLAY(window), GDK_WINDOW_XID(window), CWOverrideRedirect,
                          &attributes);
}

/// The visible part of the window: a tray with less room than requested may put it into a smaller window.
std::pair<int, int> visibleSize(GdkWindow* window) {
  int width = gdk_window_get_width(window);
  int height = gdk_window_get_height(window);
  auto* display = GDK_WINDOW_XDISPLAY(window);
  const ErrorTrap trap(display);
  Window root = None;
  Window parent = None;
  Window* children = nullptr;
  unsigned count = 0;
  XWindowAttributes slot;
  if (XQueryTree(display, GDK_WINDOW_XID(window), &root, &parent, &children, &count) != 0) {
    if (children != nullptr) XFree(children);
    if (parent != root && XGetWindowAttributes(display, parent, &slot) != 0) {
      const int scale = gdk_window_get_scale_factor(window);
      width = std::min(width, slot.width / scale);
      height = std::min(height, slot.height / scale);
    }
  }
  return {width, height};
}

}  // namespace

TrayPlug::TrayPlug(Tray& tray, const std::string& title, std::function<void(const GdkEvent*)> onPress)
    : onPress_(std::move(onPress)), title_(title) {
  if (openToolkit()) make(tray);
}

TrayPlug::~TrayPlug() {
  if (plug_ != nullptr) gtk_widget_destroy(plug_);
}

void TrayPlug::make(Tray& tray) {
  plug_ = gtk_plug_new(0);
  button_ = gtk_button_new_with_label("");
  addStyle(plug_, "keyvora-tray");
  addStyle(button_, "keyvora-item");
  if (auto* visual = transparentVisual(tray)) {
    gtk_widget_set_visual(plug_, visual);
  } else {
    gtk_style_context_add_class(gtk_widget_get_style_context(plug_), "opaque");
  }
  gtk_widget_set_can_focus(button_, FALSE);
  gtk_container_add(GTK_CONTAINER(plug_), button_);

  // A press opens the menu, as usual; a click without a press comes from an assistive tool.
  const auto pressed = +[](GtkWidget*, GdkEvent* event, TrayPlug* self) -> gboolean {
    self->onPress_(event);
    return GDK_EVENT_STOP;
  };
  const auto clicked = +[](GtkWidget*, TrayPlug* self) { self->onPress_(nullptr); };
  const auto drawn = +[](GtkWidget*, cairo_t* context, TrayPlug* self) -> gboolean {
    return self->drawNarrow(context) ? GDK_EVENT_STOP : GDK_EVENT_PROPAGATE;
  };
  const auto destroyed = +[](GtkWidget*, TrayPlug* self) { self->plug_ = self->button_ = nullptr; };
  g_signal_connect(button_, "button-press-event", G_CALLBACK(pressed), this);
  g_signal_connect(button_, "clicked", G_CALLBACK(clicked), this);
  g_signal_connect(button_, "draw", G_CALLBACK(drawn), this);
  g_signal_connect(plug_, "destroy", G_CALLBACK(destroyed), this);

  setTitle(title_);
  gtk_widget_show_all(button_);
  // The window is made with the size that it needs: the tray chooses another, and a request after that would
  // undo it.
  GtkRequisition size;
  gtk_widget_get_preferred_size(plug_, nullptr, &size);
  GtkAllocation area{0, 0, size.width, size.height};
  gtk_widget_size_allocate(plug_, &area);
  gtk_widget_realize(plug_);
  ignoreByWindowManagers(gtk_widget_get_window(plug_));
  gtk_widget_show(plug_);
  gdk_display_sync(gtk_widget_get_display(plug_));
  tray.dock(gtk_plug_get_id(GTK_PLUG(plug_)));
}

void TrayPlug::setTitle(const std::string& title) {
  title_ = title;
  if (plug_ == nullptr) return;
  gtk_button_set_label(GTK_BUTTON(button_), title_.c_str());
  gtk_window_set_title(GTK_WINDOW(plug_), title_.c_str());
  gtk_widget_queue_draw(button_);
}

/// Draws the icon if the slot has no room for the text; false if it has.
bool TrayPlug::drawNarrow(cairo_t* context) const {
  auto* window = gtk_widget_get_window(plug_);
  const auto [width, height] = visibleSize(window);
  int needed = 0;
  gtk_widget_get_preferred_width(button_, &needed, nullptr);
  if (width >= needed) {
    // GTK made the window wider for an earlier text, past its slot, and the tray may not know: it sees only
    // the width requested last.
    if (gdk_window_get_width(window) > width) gtk_window_resize(GTK_WINDOW(plug_), width, height);
    return false;
  }
  cairo_save(context);
  // A widget that got less room than it needs may lie partly outside its window.
  int left = 0;
  int top = 0;
  gtk_widget_translate_coordinates(button_, plug_, 0, 0, &left, &top);
  cairo_translate(context, -left, -top);
  drawStatusIcon(context, StatusTitle::of(title_), width, height);
  cairo_restore(context);
  return true;
}

}  // namespace keyvora::x11
