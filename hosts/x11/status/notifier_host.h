#pragma once

#include <gio/gio.h>

#include <functional>
#include <string>

#include "hosts/x11/gobject.h"

namespace keyvora::x11 {

/// The panels that show status notifier items, as they come and go: whether the session bus has a watcher
/// (org.kde.StatusNotifierWatcher) that knows a host. Nothing is asked while nothing changes, and nothing is
/// started by asking. Main thread.
class NotifierHost {
 public:
  /// `onChange` runs when the first answer is there, and whenever it has changed or the watcher is another.
  explicit NotifierHost(std::function<void()> onChange);
  ~NotifierHost();
  NotifierHost(const NotifierHost&) = delete;
  NotifierHost& operator=(const NotifierHost&) = delete;

  /// Whether the session bus has answered, or there is none.
  [[nodiscard]] bool isKnown() const { return isKnown_; }

  /// Whether an item would be shown.
  [[nodiscard]] bool isPresent() const { return isPresent_; }

  /// Whether it would be GNOME's shell that shows it.
  [[nodiscard]] bool isGnome() const { return isGnome_; }

  /// The session bus; null when there is none, or no more.
  [[nodiscard]] GDBusConnection* bus() const { return bus_.get(); }

  /// Asks the watcher to have the item of this bus name shown.
  void registerItem(const std::string& name);

 private:
  static void connected(GObject* source, GAsyncResult* result, gpointer self);
  static void appeared(GDBusConnection* bus, const char* name, const char* owner, gpointer self);
  static void vanished(GDBusConnection* bus, const char* name, gpointer self);
  static void shellAnswered(GObject* bus, GAsyncResult* result, gpointer self);
  static void hostAnswered(GObject* bus, GAsyncResult* result, gpointer self);

  void follow(GDBusConnection* bus);
  void lost();
  void askForHost();
  void set(bool isPresent);
  void call(const char* destination, const char* path, const char* interface, const char* method,
            GVariant* parameters, const char* answerType, GAsyncReadyCallback answered);

  std::function<void()> onChange_;
  GObjectRef<GCancellable> cancellable_;
  GObjectRef<GDBusConnection> bus_;
  gulong closed_ = 0;
  guint watch_ = 0;
  guint hostSignals_ = 0;
  std::string owner_;
  bool isKnown_ = false;
  bool isPresent_ = false;
  bool isGnome_ = false;
};

}  // namespace keyvora::x11
