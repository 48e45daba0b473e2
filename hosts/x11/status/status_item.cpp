#include "hosts/x11/status/status_item.h"

#include <gtk/gtkx.h>

#include <utility>

#include "hosts/x11/gobject.h"

namespace keyvora::x11 {
namespace {

/// The text stands on a ground of its own, so that it can be read on light trays and on dark ones. Nothing
/// moves: an animation would keep the program awake.
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

std::string validText(std::string_view text) {
  const GText valid(g_utf8_make_valid(text.data(), static_cast<gssize>(text.size())));
  return valid.get();
}

}  // namespace

StatusItem::StatusItem(MainLoop& loop)
    : loop_(loop), tray_([this] {
        undock();
        dock();
      }) {
  dock();
}

StatusItem::~StatusItem() {
  if (open_ && open_->isOpen()) loop_.endTracking();
  open_.reset();
  undock();
}

void StatusItem::setTitle(std::string_view title) {
  auto text = validText(title);
  if (text == title_) return;
  title_ = std::move(text);
  if (plug_ != nullptr) showTitle();
}

void StatusItem::setMenu(platform::Menu menu) {
  menu_ = std::move(menu);
}

void StatusItem::dock() {
  if (!tray_.isPresent()) return;
  plug_ = gtk_plug_new(0);
  button_ = gtk_button_new_with_label("");
  addStyle(plug_, "keyvora-tray");
  addStyle(button_, "keyvora-item");
  if (auto* visual = tray_.transparentVisual()) {
    gtk_widget_set_visual(plug_, visual);
  } else {
    gtk_style_context_add_class(gtk_widget_get_style_context(plug_), "opaque");
  }
  gtk_widget_set_can_focus(button_, FALSE);
  gtk_container_add(GTK_CONTAINER(plug_), button_);

  // A press opens the menu as menus open everywhere; a click without one is an assistive tool's.
  const auto pressed = +[](GtkWidget*, GdkEvent* event, StatusItem* self) -> gboolean {
    self->openMenu(event);
    return GDK_EVENT_STOP;
  };
  const auto clicked = +[](GtkWidget*, StatusItem* self) { self->openMenu(nullptr); };
  const auto destroyed = +[](GtkWidget*, StatusItem* self) { self->plug_ = self->button_ = nullptr; };
  g_signal_connect(button_, "button-press-event", G_CALLBACK(pressed), this);
  g_signal_connect(button_, "clicked", G_CALLBACK(clicked), this);
  g_signal_connect(plug_, "destroy", G_CALLBACK(destroyed), this);

  showTitle();
  gtk_widget_realize(plug_);
  // When its tray goes, a window falls back to the root; a window manager is to leave it alone there.
  gdk_window_set_override_redirect(gtk_widget_get_window(plug_), TRUE);
  gtk_widget_show_all(plug_);
  tray_.dock(gtk_plug_get_id(GTK_PLUG(plug_)));
}

void StatusItem::undock() {
  if (plug_ != nullptr) gtk_widget_destroy(plug_);
}

void StatusItem::showTitle() {
  gtk_button_set_label(GTK_BUTTON(button_), title_.c_str());
  gtk_window_set_title(GTK_WINDOW(plug_), title_.c_str());
}

void StatusItem::openMenu(const GdkEvent* event) {
  if (open_ && open_->isOpen()) return;
  open_ = std::make_unique<StatusMenu>(menu_, [this] { menuClosed(); });
  if (!open_->open(button_, event)) {
    open_.reset();
    return;
  }
  loop_.beginTracking();
}

void StatusItem::menuClosed() {
  loop_.endTracking();
  // Its command is still to come, in this pass of the loop.
  release_ = loop_.schedule({}, false, platform::TimerMode::commonModes, [this] {
    if (open_ && !open_->isOpen()) open_.reset();
  });
}

}  // namespace keyvora::x11
