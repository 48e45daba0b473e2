#pragma once

#include <X11/Xlib.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>

/// What every part of this host shares about the X display: connections, errors, and the display's end.
namespace keyvora::x11 {

/// A connection to the X server, closed by its destructor. It may move between threads, but is used by one at
/// a time: each thread that talks to the server opens its own.
class Connection {
 public:
  /// Connects to the display of this name, or to the one that DISPLAY names when it is empty; null when there
  /// is no such display. Installs the error handlers. Any thread.
  static std::unique_ptr<Connection> open(const std::string& displayName);

  ~Connection();
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  [[nodiscard]] Display* get() const { return display_; }
  [[nodiscard]] Window root() const { return DefaultRootWindow(display_); }

  /// Readable when the server has sent something.
  [[nodiscard]] int fileDescriptor() const { return ConnectionNumber(display_); }

  /// The number that the server gave to this name, which it makes known if it is new. One round trip.
  Atom atom(const char* name) { return XInternAtom(display_, name, False); }

 private:
  explicit Connection(Display* display) : display_(display) {}

  Display* display_;
};

/// Catches the X errors of this thread's requests on one display for as long as it lives. Outside a trap an
/// error is passed over: the usual one is a window that went away, and whoever needs to know asks. Traps
/// nest.
class ErrorTrap {
 public:
  explicit ErrorTrap(Display* display);
  ~ErrorTrap();
  ErrorTrap(const ErrorTrap&) = delete;
  ErrorTrap& operator=(const ErrorTrap&) = delete;

  /// The code of the first error since the trap was set, 0 for none; waits for the server's answers.
  int code();

 private:
  friend int recordError(Display* display, XErrorEvent* error);

  Display* display_;
  ErrorTrap* outer_;
  int code_ = 0;
};

/// Makes X errors harmless and the loss of a display the end of the process, on every connection, whoever
/// opened it. A toolkit that installs handlers of its own undoes that: call this again after starting one.
void installErrorHandlers();

/// Sets what runs once when a display is lost, on whichever thread noticed, before the process ends: the last
/// chance to bring records to safety. It must be quick, must not call Xlib and must not throw.
void setDisplayLossHandler(std::function<void()> handler);

/// Ends the process because its display is gone: a message on standard error, the loss handler, status 1.
/// Nothing is torn down, so that no other thread trips over it. Any thread.
[[noreturn]] void endForDisplayLoss();

/// Why the tap cannot work on this display, as a sentence for a person; none when it can: the display can be
/// opened and has XInput 2.2 or later, XTEST and XKB. Asks the server anew each time. Any thread.
std::optional<std::string> displayProblem(const std::string& displayName);

/// Announces to the server that this connection speaks XInput 2.2, the version that brought raw events which
/// tell the device they come from. Gives the extension's opcode; none when the server's version is older.
std::optional<int> xinputOpcode(Display* display);

}  // namespace keyvora::x11
