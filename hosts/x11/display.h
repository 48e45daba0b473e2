#pragma once

#include <X11/Xlib.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>

/// The X display, shared by all parts of this host: connections, errors and the loss of the display.
namespace keyvora::x11 {

/// A connection to the X server, closed by its destructor. May move between threads, but only one may use
/// it at a time: each thread opens its own.
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

  /// The atom of this name, created if it is new. One round trip.
  Atom atom(const char* name) { return XInternAtom(display_, name, False); }

 private:
  explicit Connection(Display* display) : display_(display) {}

  Display* display_;
};

/// While it exists, catches the X errors of this thread's requests on one display. Errors outside a trap
/// are ignored: the usual cause is a window that was closed, and code that needs to know uses a trap. Traps
/// nest.
class ErrorTrap {
 public:
  explicit ErrorTrap(Display* display);
  ~ErrorTrap();
  ErrorTrap(const ErrorTrap&) = delete;
  ErrorTrap& operator=(const ErrorTrap&) = delete;

  /// The code of the first error since the trap was set, 0 for none. Waits for the server's answers.
  int code();

 private:
  friend int recordError(Display* display, XErrorEvent* error);

  Display* display_;
  ErrorTrap* outer_;
  int code_ = 0;
};

/// Makes X errors harmless and ends the process when a display is lost, for every connection in the
/// process. A toolkit that installs its own handlers replaces these: call this again after initialising it.
void installErrorHandlers();

/// Sets a function that is called once when a display is lost, before the process ends, on the thread that
/// noticed it: the last chance to write records. It must be quick, must not call Xlib and must not throw.
void setDisplayLossHandler(std::function<void()> handler);

/// Ends the process because its display is lost: a message on standard error, the loss handler, status 1.
/// Destroys nothing, so that other threads keep working until the end. Any thread.
[[noreturn]] void endForDisplayLoss();

/// Why the tap cannot work on this display, as a sentence for the user; none when it can: the display can
/// be opened and has XInput 2.2 or later, XTEST and XKB. Queries the server each time. Any thread.
std::optional<std::string> displayProblem(const std::string& displayName);

/// Announces XInput 2.2 for this connection, the first version whose raw events name their source device.
/// Returns the extension's opcode; none when the server's version is older.
std::optional<int> xinputOpcode(Display* display);

}  // namespace keyvora::x11
