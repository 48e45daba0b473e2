#pragma once

#include <gtk/gtk.h>

#include <functional>
#include <string>

#include "hosts/x11/status/tray.h"

namespace keyvora::x11 {

/// The item in an X system tray: a button in a GtkPlug that the tray takes in by the XEmbed protocol. It asks
/// for room for its text; in a slot that is narrower it draws the icon instead. Main thread.
class TrayPlug {
 public:
  /// `onPress` runs when the button is pressed; the event is null when an assistive tool pressed it.
  TrayPlug(Tray& tray, const std::string& title, std::function<void(const GdkEvent*)> onPress);
  ~TrayPlug();
  TrayPlug(const TrayPlug&) = delete;
  TrayPlug& operator=(const TrayPlug&) = delete;

  /// UTF-8.
  void setTitle(const std::string& title);

  /// What a menu opens at; null when the tray took the item away, or the toolkit could not be opened.
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
