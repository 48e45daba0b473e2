#pragma once

#include <gtk/gtk.h>

#include <functional>
#include <string>

#include "appcast/presenter.h"

namespace keyvora::x11 {

/// The window of the updater, in GTK. Main thread.
class UpdateWindow final : public appcast::Presenter {
 public:
  UpdateWindow() = default;
  ~UpdateWindow() override;
  UpdateWindow(const UpdateWindow&) = delete;
  UpdateWindow& operator=(const UpdateWindow&) = delete;

  [[nodiscard]] bool isAvailable() const override;
  void showChecking(std::function<void()> cancelled) override;
  void showUpdate(const appcast::Announcement& announcement,
                  std::function<void(appcast::Choice)> chosen) override;
  void showMessage(const std::string& title, const std::string& details,
                   std::function<void()> acknowledged) override;
  void bringForward() override;
  void close() override;

 private:
  GtkWidget* beginContents(const std::string& title, const std::string& details,
                           std::function<void()> closed);
  void showAll(bool inTaskbar);
  GtkWidget* addButton(GtkWidget* buttons, const std::string& label, std::function<void()> pressed);
  void finish(std::function<void()> answer);

  GtkWidget* window_ = nullptr;
  /// Called when the window is closed other than by a button.
  std::function<void()> closed_;
};

}  // namespace keyvora::x11
