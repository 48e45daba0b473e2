#pragma once

#include <functional>
#include <string_view>

namespace keyvora::platform {

/// How the desktop treats the process, with the values of `NSApplicationActivationPolicy`.
enum class ActivationPolicy {
  /// Listed among the running applications.
  regular = 0,
  /// In the status bar only.
  accessory = 1,
};

/// The process as an application of the desktop. Main thread.
class Application {
 public:
  virtual ~Application() = default;

  /// Gives the application its delegate, which calls `didFinishLaunching` once when the main loop has
  /// started. Must be the first call.
  virtual void setDelegate(std::function<void()> didFinishLaunching) = 0;

  virtual void setActivationPolicy(ActivationPolicy policy) = 0;

  /// Brings the application's windows to the front.
  virtual void activate() = 0;

  /// Runs the main loop until `terminate`. Returns the exit status, on systems where it returns.
  virtual int run() = 0;

  /// Ends the application normally, with status 0.
  virtual void terminate() = 0;
};

/// The process itself.
class Process {
 public:
  virtual ~Process() = default;

  /// Writes one line to standard output. Main thread.
  virtual void print(std::string_view line) = 0;

  /// Ends the process at once, normally, with this status. Returns only in a simulation. Main thread.
  virtual void exit(int status) = 0;

  /// Runs `block` at a normal end of the process, on the thread that ends it. Any thread.
  virtual void atExit(std::function<void()> block) = 0;
};

}  // namespace keyvora::platform
