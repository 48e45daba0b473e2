#include "hosts/x11/updates/update_window.h"
#include "hosts/x11/gobject.h"
#include "text/utf8.h"

#include <gtk/gtk.h>

#include <memory>
#include <utility>

#include "hosts/x11/toolkit.h"

namespace keyvora::x11 {
namespace {

constexpr int margin = 18;
constexpr int spacing = 12;
constexpr int notesWidth = 480;
constexpr int notesHeight = 240;

/// Connects a signal handler that lives as long as the widget.
void onSignal(GtkWidget* widget, const char* signal, std::function<void()> handler) {
  using Handler = std::function<void()>;
  const auto call = +[](GtkWidget*, gpointer held) { (*static_cast<Handler*>(held))(); };
  const auto release = +[](gpointer held, GClosure*) { delete static_cast<Handler*>(held); };
  g_signal_connect_data(widget, signal, G_CALLBACK(call), new Handler(std::move(handler)), release,
                        static_cast<GConnectFlags>(0));
}

GtkWidget* addLabel(GtkWidget* box, const std::string& text) {
  GtkWidget* label = gtk_label_new(text::validText(text).c_str());
  gtk_label_set_xalign(GTK_LABEL(label), 0);
  gtk_label_set_line_wrap(GTK_LABEL(label), TRUE);
  gtk_label_set_line_wrap_mode(GTK_LABEL(label), PANGO_WRAP_WORD_CHAR);
  gtk_label_set_max_width_chars(GTK_LABEL(label), 60);
  gtk_container_add(GTK_CONTAINER(box), label);
  return label;
}

void addHeading(GtkWidget* box, const std::string& text) {
  PangoAttrList* bold = pango_attr_list_new();
  pango_attr_list_insert(bold, pango_attr_weight_new(PANGO_WEIGHT_BOLD));
  gtk_label_set_attributes(GTK_LABEL(addLabel(box, text)), bold);
  pango_attr_list_unref(bold);
}

void addNotes(GtkWidget* box, const std::string& notes) {
  GtkWidget* view = gtk_text_view_new();
  gtk_text_view_set_editable(GTK_TEXT_VIEW(view), FALSE);
  gtk_text_view_set_cursor_visible(GTK_TEXT_VIEW(view), FALSE);
  gtk_text_view_set_wrap_mode(GTK_TEXT_VIEW(view), GTK_WRAP_WORD_CHAR);
  gtk_text_view_set_left_margin(GTK_TEXT_VIEW(view), spacing);
  gtk_text_view_set_right_margin(GTK_TEXT_VIEW(view), spacing);
  gtk_text_view_set_top_margin(GTK_TEXT_VIEW(view), spacing);
  gtk_text_view_set_bottom_margin(GTK_TEXT_VIEW(view), spacing);
  atk_object_set_name(gtk_widget_get_accessible(view), "Release notes");
  gtk_text_buffer_set_text(gtk_text_view_get_buffer(GTK_TEXT_VIEW(view)), text::validText(notes).c_str(), -1);

  GtkWidget* scrolled = gtk_scrolled_window_new(nullptr, nullptr);
  gtk_scrolled_window_set_shadow_type(GTK_SCROLLED_WINDOW(scrolled), GTK_SHADOW_IN);
  gtk_widget_set_size_request(scrolled, notesWidth, notesHeight);
  gtk_widget_set_vexpand(scrolled, TRUE);
  gtk_container_add(GTK_CONTAINER(scrolled), view);
  gtk_container_add(GTK_CONTAINER(box), scrolled);
}

/// Adds the address as a link that opens in the user's browser and leaves this window open.
void addNotesLink(GtkWidget* box, const std::string& address) {
  const GText escaped(g_markup_escape_text(address.c_str(), -1));
  const std::string link = std::string("<a href=\"") + escaped.get() + "\">" + escaped.get() + "</a>";
  gtk_label_set_markup(GTK_LABEL(addLabel(box, "")), ("Release notes: " + link).c_str());
}

GtkWidget* addButtonBox(GtkWidget* box) {
  GtkWidget* buttons = gtk_button_box_new(GTK_ORIENTATION_HORIZONTAL);
  gtk_button_box_set_layout(GTK_BUTTON_BOX(buttons), GTK_BUTTONBOX_END);
  gtk_box_set_spacing(GTK_BOX(buttons), spacing);
  gtk_container_add(GTK_CONTAINER(box), buttons);
  return buttons;
}

gboolean closeOnEscape(GtkWidget* window, GdkEventKey* event, gpointer) {
  if (event->keyval != GDK_KEY_Escape) return GDK_EVENT_PROPAGATE;
  gtk_window_close(GTK_WINDOW(window));
  return GDK_EVENT_STOP;
}

}  // namespace

UpdateWindow::~UpdateWindow() {
  close();
}

bool UpdateWindow::isAvailable() const {
  return hasDisplay();
}

void UpdateWindow::showChecking(std::function<void()> cancelled) {
  if (!openToolkit()) return;  // the check goes on without a window to cancel it
  GtkWidget* box = beginContents("Looking for updates…", "", std::move(cancelled));
  GtkWidget* spinner = gtk_spinner_new();
  gtk_spinner_start(GTK_SPINNER(spinner));
  gtk_container_add(GTK_CONTAINER(box), spinner);
  addButton(addButtonBox(box), "Cancel", closed_);
  showAll(false);
}

void UpdateWindow::showUpdate(const appcast::Announcement& announcement,
                              std::function<void(appcast::Choice)> chosen) {
  using appcast::Choice;
  if (!openToolkit()) return chosen(Choice::later);
  std::string details =
      "This is version " + announcement.currentVersion + ". Your package manager installs updates.";
  if (!announcement.address.empty()) details += "\n" + announcement.address;
  GtkWidget* box = beginContents("keyvora " + announcement.displayVersion + " is available", details,
                                 [chosen] { chosen(Choice::later); });
  if (!announcement.notes.empty()) addNotes(box, announcement.notes);
  if (!announcement.notesAddress.empty()) addNotesLink(box, announcement.notesAddress);

  GtkWidget* buttons = addButtonBox(box);
  addButton(buttons, "Skip This Version", [chosen] { chosen(Choice::skip); });
  GtkWidget* initial = addButton(buttons, "Later", [chosen] { chosen(Choice::later); });
  if (!announcement.address.empty()) {
    initial = addButton(buttons, "Open Web Page", [chosen] { chosen(Choice::open); });
  }
  gtk_widget_grab_focus(initial);
  showAll(true);
}

void UpdateWindow::showMessage(const std::string& title, const std::string& details,
                               std::function<void()> acknowledged) {
  if (!openToolkit()) return acknowledged();
  GtkWidget* box = beginContents(title, details, std::move(acknowledged));
  gtk_widget_grab_focus(addButton(addButtonBox(box), "OK", closed_));
  showAll(false);
}

/// An accessory's windows stay out of the task bar; the program is a regular application only while it
/// shows an update.
void UpdateWindow::showAll(bool inTaskbar) {
  gtk_window_set_skip_taskbar_hint(GTK_WINDOW(window_), !inTaskbar);
  gtk_window_set_skip_pager_hint(GTK_WINDOW(window_), !inTaskbar);
  gtk_widget_show_all(window_);
  bringForward();
}

void UpdateWindow::bringForward() {
  if (window_ != nullptr) gtk_window_present_with_time(GTK_WINDOW(window_), GDK_CURRENT_TIME);
}

void UpdateWindow::close() {
  closed_ = nullptr;
  if (window_ != nullptr) gtk_widget_destroy(std::exchange(window_, nullptr));
}

/// Empties the window, or creates it, and adds a heading and details. Returns the box for what follows
/// below them.
GtkWidget* UpdateWindow::beginContents(const std::string& title, const std::string& details,
                                       std::function<void()> closed) {
  if (window_ == nullptr) {
    window_ = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    gtk_window_set_title(GTK_WINDOW(window_), "keyvora update");
    gtk_window_set_icon_name(GTK_WINDOW(window_), "keyvora");
    gtk_window_set_position(GTK_WINDOW(window_), GTK_WIN_POS_CENTER);
    gtk_container_set_border_width(GTK_CONTAINER(window_), margin);
    g_signal_connect(window_, "key-press-event", G_CALLBACK(closeOnEscape), nullptr);
    // The user closed it, so GTK destroys the window.
    onSignal(window_, "destroy", [this] {
      if (window_ == nullptr) return;
      window_ = nullptr;
      finish(closed_);
    });
  } else if (GtkWidget* old = gtk_bin_get_child(GTK_BIN(window_)); old != nullptr) {
    gtk_widget_destroy(old);
    gtk_window_resize(GTK_WINDOW(window_), 1, 1);
  }
  closed_ = std::move(closed);
  GtkWidget* box = gtk_box_new(GTK_ORIENTATION_VERTICAL, spacing);
  gtk_container_add(GTK_CONTAINER(window_), box);
  addHeading(box, title);
  if (!details.empty()) gtk_label_set_selectable(GTK_LABEL(addLabel(box, details)), TRUE);
  return box;
}

GtkWidget* UpdateWindow::addButton(GtkWidget* buttons, const std::string& label,
                                   std::function<void()> pressed) {
  GtkWidget* button = gtk_button_new_with_label(label.c_str());
  onSignal(button, "clicked", [this, pressed = std::move(pressed)] { finish(pressed); });
  gtk_container_add(GTK_CONTAINER(buttons), button);
  return button;
}

/// Closes the window, then calls the answer. By value: closing the window destroys the original.
void UpdateWindow::finish(std::function<void()> answer) {  // NOLINT(performance-unnecessary-value-param)
  close();
  if (answer) answer();
}

}  // namespace keyvora::x11
