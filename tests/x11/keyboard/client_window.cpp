#include "tests/x11/keyboard/client_window.h"

#include <X11/XKBlib.h>
#include <X11/Xatom.h>
#include <X11/Xutil.h>
#include <poll.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <mutex>
#include <stdexcept>
#include <thread>

#include "hosts/x11/applications/window_property.h"
#include "hosts/x11/display.h"
#include "hosts/x11/keyboard/key_map.h"
#include "hosts/x11/keyboard/wakeup.h"
#include "tests/x11/private_display.h"

namespace keyvora::x11 {

namespace {

void setWindowClass(Display* display, Window window, std::string instanceName, std::string className) {
  XClassHint hint{instanceName.data(), className.data()};
  XSetClassHint(display, window, &hint);
  XFlush(display);
}

}  // namespace

struct ClientWindow::State {
  State(const std::string& displayName, const Options& options)
      : connection(open(displayName)), control(open(displayName)), keys(connection->get()) {
    Display* display = connection->get();
    window = XCreateSimpleWindow(display, connection->root(), 0, 0, 200, 100, 0, 0, 0);
    setWindowClass(display, window, options.instanceName, options.className);
    const auto process = long(options.process);
    XChangeProperty(display, window, connection->atom("_NET_WM_PID"), XA_CARDINAL, 32, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(&process), 1);
    if (options.transientFor != None) XSetTransientForHint(display, window, options.transientFor);
    if (!options.title.empty()) {
      XChangeProperty(display, window, connection->atom("_NET_WM_NAME"), connection->atom("UTF8_STRING"), 8,
                      PropModeReplace, reinterpret_cast<const unsigned char*>(options.title.data()),
                      int(options.title.size()));
    }
    XWMHints hints{};
    hints.flags = InputHint;
    hints.input = True;
    XSetWMHints(display, window, &hints);
    XSelectInput(display, window, KeyPressMask | KeyReleaseMask | FocusChangeMask);
    XMapRaised(display, window);
    XSync(display, False);
    reader = std::thread([this] { read(); });
  }

  ~State() {
    ending = true;
    wakeup.signal();
    reader.join();
  }

  static std::unique_ptr<Connection> open(const std::string& displayName) {
    auto opened = Connection::open(displayName);
    if (!opened) throw std::runtime_error("no display " + displayName);
    return opened;
  }

  void read() {
    Display* display = connection->get();
    while (!ending) {
      wakeup.clear();
      followGrab();
      while (XPending(display) > 0) {
        XEvent event;
        XNextEvent(display, &event);
        keys.notice(event);
        if (event.type == MappingNotify) XRefreshKeyboardMapping(&event.xmapping);
        if (event.type == KeyPress || event.type == KeyRelease) record(event.xkey);
      }
      std::array<pollfd, 2> sources{
          {{connection->fileDescriptor(), POLLIN, 0}, {wakeup.fileDescriptor(), POLLIN, 0}}};
      poll(sources.data(), sources.size(), -1);
    }
  }

  void followGrab() {
    Display* display = connection->get();
    if (grabWanted && !grabbed) {
      grabbed =
          XGrabKeyboard(display, window, True, GrabModeAsync, GrabModeAsync, CurrentTime) == GrabSuccess;
    } else if (!grabWanted && grabbed) {
      XUngrabKeyboard(display, CurrentTime);
      XSync(display, False);
      grabbed = false;
    }
  }

  void record(XKeyEvent& event) {
    if (keys.keyCode(event.keycode) == sentinelKey) {
      if (event.type == KeyRelease) ++sentinels;
      return;
    }
    KeySym symbol = NoSymbol;
    XLookupString(&event, nullptr, 0, &symbol, nullptr);
    const ReceivedKey key{.keyCode = keys.keyCode(event.keycode),
                          .down = event.type == KeyPress,
                          .wasSent = event.send_event != False,
                          .state = event.state,
                          .symbol = symbol,
                          .at = std::chrono::steady_clock::now()};
    const std::scoped_lock lock(mutex);
    received.push_back(key);
  }

  std::unique_ptr<Connection> connection;
  std::unique_ptr<Connection> control;
  KeyMap keys;
  Window window = None;
  std::mutex mutex;
  std::vector<ReceivedKey> received;
  Wakeup wakeup;
  std::atomic<int> sentinels = 0;
  std::atomic<bool> ending = false;
  std::atomic<bool> grabWanted = false;
  std::atomic<bool> grabbed = false;
  std::thread reader;
};

ClientWindow::ClientWindow(const std::string& displayName, const Options& options)
    : state_(std::make_unique<State>(displayName, options)) {}

ClientWindow::~ClientWindow() = default;

unsigned long ClientWindow::window() const {
  return state_->window;
}

void ClientWindow::setClass(const std::string& instanceName, const std::string& className) {
  setWindowClass(state_->control->get(), state_->window, instanceName, className);
}

std::vector<ReceivedKey> ClientWindow::received() const {
  const std::scoped_lock lock(state_->mutex);
  return state_->received;
}

int ClientWindow::sentinels() const {
  return state_->sentinels;
}

std::vector<std::uint16_t> ClientWindow::pressed() const {
  std::vector<std::uint16_t> keyCodes;
  for (const auto& key : received()) {
    if (key.down) keyCodes.push_back(key.keyCode);
  }
  return keyCodes;
}

bool ClientWindow::awaitFocus() const {
  Display* display = state_->control->get();
  const Atom active = state_->control->atom("_NET_ACTIVE_WINDOW");
  return runUntil([&] {
    Window focus = None;
    int revert = 0;
    XGetInputFocus(display, &focus, &revert);
    const auto told = numbersOf(display, state_->control->root(), active, XA_WINDOW);
    return focus == state_->window && told && told->front() == state_->window;
  });
}

std::size_t ClientWindow::windowsOnScreen() const {
  Display* display = state_->control->get();
  const ErrorTrap trap(display);  // a window may be closed before it is queried
  Window root = None;
  Window parent = None;
  Window* windows = nullptr;
  unsigned count = 0;
  if (XQueryTree(display, state_->control->root(), &root, &parent, &windows, &count) == 0) return 0;
  const std::unique_ptr<Window, decltype(&XFree)> owner(windows, &XFree);
  return static_cast<std::size_t>(std::count_if(windows, windows + count, [display](Window window) {
    XWindowAttributes attributes;
    return XGetWindowAttributes(display, window, &attributes) != 0 && attributes.map_state == IsViewable;
  }));
}

bool ClientWindow::activate() {
  Display* display = state_->control->get();
  XEvent event{};
  event.xclient.type = ClientMessage;
  event.xclient.window = state_->window;
  event.xclient.message_type = state_->control->atom("_NET_ACTIVE_WINDOW");
  event.xclient.format = 32;
  event.xclient.data.l[0] = 2;  // from a pager
  XSendEvent(display, state_->control->root(), False, SubstructureNotifyMask | SubstructureRedirectMask,
             &event);
  XFlush(display);
  return awaitFocus();
}

bool ClientWindow::grabKeyboard() {
  state_->grabWanted = true;
  state_->wakeup.signal();
  return runUntil([&] { return state_->grabbed.load(); });
}

void ClientWindow::ungrabKeyboard() {
  state_->grabWanted = false;
  state_->wakeup.signal();
  runUntil([&] { return !state_->grabbed; });
}

}  // namespace keyvora::x11
