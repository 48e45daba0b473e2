#pragma once

#include <gtk/gtk.h>

#include <functional>
#include <string>

#include "hosts/x11/status/tray.h"

namespace keyvora::x11 {

/// The item in an X system tray: a button in a GtkPlug, embedded by the tray with the XEmbed protocol.
/// Requests room for its text; in a narrower slot it draws the icon instead. Main thread.
class TrayPlug {
 public:
  /// `onPress` runs when the button is pressed; the event is null when an assistive tool pressed it.
  TrayPlug(Tray& tray, const std::string& title, std::function<void(const GdkEvent*)> onPress);
  ~TrayPlug();
  TrayPlug(const TrayPlug&) = delete;
  TrayPlug& operator=(const TrayPlug&) = delete;

  /// UTF-8.
  void setTitle(const std::string& title);

  /// The widget at which a menu opens; null when the tray removed the item or the toolkit could not be
  /// opened.
  [[nodiscard]] GtkWidget* button() const { return button_; }

 private:
  void make(Tray& tray);
  bool drawNarrow(cairo_t* context) const;

  std::function<void(const GdkEvent*)> onPress_;
  std::string title_;
  GtkWidget* plug_ = nullptr;
  GtkWidget* button_ = nullptr;
};

}  // namespace keyvora::x11
