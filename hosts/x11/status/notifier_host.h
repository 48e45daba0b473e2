#pragma once

#include <gio/gio.h>

#include <functional>
#include <string>
#include <string_view>

#include "hosts/x11/gobject.h"

namespace keyvora::x11 {

/// Follows the panels that show status notifier items: whether the session bus has a watcher
/// (org.kde.StatusNotifierWatcher) with a registered host. Does not poll, and its calls start no service.
/// Main thread.
class NotifierHost {
 public:
  /// `onChange` runs when the first answer has come, and whenever the answer or the watcher has changed.
  explicit NotifierHost(std::function<void()> onChange);
  ~NotifierHost();
  NotifierHost(const NotifierHost&) = delete;
  NotifierHost& operator=(const NotifierHost&) = delete;

  /// Whether the first answer has come, or there is no session bus.
  [[nodiscard]] bool isKnown() const { return isKnown_; }

  /// Whether an item would be shown.
  [[nodiscard]] bool isPresent() const { return isPresent_; }

  /// Whether GNOME's shell would show it.
  [[nodiscard]] bool isGnome() const { return isGnome_; }

  /// The session bus; null when there is none or it has ended.
  [[nodiscard]] GDBusConnection* bus() const { return bus_.get(); }

  /// Registers the item of this bus name with the watcher, and again when the watcher drops it although the
  /// name still exists: GNOME's extension may do that while the shell starts. A watcher that drops it again
  /// and again gets it a limited number of times.
  void registerItem(const std::string& name);

  /// Ends that: the item does not exist any more.
  void forgetItem() { item_.clear(); }

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
  void itemDropped(std::string_view item);
  void sendItem();
  void call(const char* destination, const char* path, const char* interface, const char* method,
            GVariant* parameters, const char* answerType, GAsyncReadyCallback answered);

  std::function<void()> onChange_;
  GObjectRef<GCancellable> cancellable_;
  GObjectRef<GDBusConnection> bus_;
  gulong closed_ = 0;
  guint watch_ = 0;
  guint hostSignals_ = 0;
  std::string owner_;
  /// The bus name of the registered item; empty without one.
  std::string item_;
  int registrationsLeft_ = 0;
  bool isKnown_ = false;
  bool isPresent_ = false;
  bool isGnome_ = false;
};

}  // namespace keyvora::x11
