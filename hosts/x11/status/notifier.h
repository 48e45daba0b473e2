#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "hosts/x11/loop/main_loop.h"
#include "hosts/x11/status/notifier_host.h"
#include "hosts/x11/status/notifier_item.h"
#include "hosts/x11/status/notifier_menu.h"

namespace keyvora::x11 {

/// The item and its menu on the session bus, under a name that is registered with the panel. Main thread.
class Notifier {
 public:
  /// For the panel that `host` has found. `openMenu` runs when a click asks for keyvora's own menu.
  Notifier(MainLoop& loop, NotifierHost& host, std::function<void(int x, int y)> openMenu);
  ~Notifier();
  Notifier(const Notifier&) = delete;
  Notifier& operator=(const Notifier&) = delete;

  /// UTF-8.
  void setTitle(const std::string& title) { item_.setTitle(title); }

  void setMenu(const platform::Menu& menu);

 private:
  void track(bool isOpen);
  void runSoon(std::function<void()> action);

  MainLoop& loop_;
  NotifierHost& host_;
  std::string name_;
  NotifierItem item_;
  NotifierMenu menu_;
  guint ownership_ = 0;
  bool isTracking_ = false;
};

}  // namespace keyvora::x11
