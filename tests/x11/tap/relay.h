#pragma once

#include <atomic>
#include <string>
#include <thread>

namespace keyvora::x11 {

/// Relays messages between one client and a display. It passes the server's messages on whole, and can
/// delay them as a slow network would.
class Relay {
 public:
  /// Between the display of this name (":7") and the first client that connects to `name`.
  explicit Relay(const std::string& displayName);
  ~Relay();
  Relay(const Relay&) = delete;
  Relay& operator=(const Relay&) = delete;

  /// The name for XOpenDisplay.
  [[nodiscard]] const std::string& name() const { return name_; }

  /// Passes on the next raw key press of the master keyboard, but holds back what follows until the client
  /// has sent a request, or for two seconds.
  void holdBackBehindNextPress() { holding_ = true; }

 private:
  void work();
  void passOn(std::string& said);

  std::string name_;
  std::string serverPath_;
  int listening_ = -1;
  int client_ = -1;
  int server_ = -1;
  bool greeted_ = false;
  std::atomic<bool> holding_ = false;
  std::atomic<bool> ending_ = false;
  std::thread thread_;
};

}  // namespace keyvora::x11
