#pragma once

#include <cstdint>
#include <memory>

#include "hosts/x11/glib_source.h"
#include "hosts/x11/tap/tap_thread.h"
#include "platform/keyboard.h"

namespace keyvora::x11 {

/// The main thread's end of the tap: shows the handler what the tap's thread hands over. Main thread.
class EventTap : public platform::EventTap {
 public:
  EventTap(std::shared_ptr<TapThread> thread, std::uint64_t eventMask, platform::TapHandler handler);

  void enable() override { thread_->enable(); }

 private:
  void showEvents();
  platform::Verdict show(const platform::KeyEvent& event);

  std::shared_ptr<TapThread> thread_;
  std::uint64_t eventMask_;
  platform::TapHandler handler_;
  ReadableSource source_;
};

}  // namespace keyvora::x11
