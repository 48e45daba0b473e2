#include "hosts/x11/accessibility/earlier_input.h"

#include <X11/Xatom.h>
#include <poll.h>

#include <algorithm>
#include <cstdint>
#include <thread>

#include "hosts/x11/applications/window_property.h"
#include "hosts/x11/display.h"
#include "hosts/x11/server_clock.h"

namespace keyvora::x11 {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

/// Longer than programs gather movements of the cursor before they make them: gnumeric for 10 ms.
constexpr milliseconds gathering{15};

/// The question to one window, on a connection of its own.
class Question {
 public:
  Question(Connection& connection, Window window)
      : connection_(connection),
        window_(window),
        clock_(connection),
        protocols_(connection.atom("WM_PROTOCOLS")),
        ping_(connection.atom("_NET_WM_PING")) {
    // The answer is sent to the root window.
    XSelectInput(connection.get(), connection.root(), SubstructureNotifyMask);
  }

  [[nodiscard]] bool isUnderstood() const {
    const auto protocols = numbersOf(connection_.get(), window_, protocols_, XA_ATOM);
    return protocols && std::ranges::find(*protocols, ping_) != protocols->end();
  }

  /// Asks, and waits for the answer; false when there is none in time.
  bool isAnswered(Clock::time_point end) {
    ask();
    for (;;) {
      while (XPending(connection_.get()) > 0) {
        XEvent event;
        XNextEvent(connection_.get(), &event);
        if (isAnswer(event)) return true;
      }
      const auto left = std::chrono::ceil<milliseconds>(end - Clock::now());
      if (left <= milliseconds(0)) return false;
      pollfd source{connection_.fileDescriptor(), POLLIN, 0};
      poll(&source, 1, int(left.count()));
    }
  }

 private:
  void ask() {
    XEvent event{};
    auto& message = event.xclient;
    message.type = ClientMessage;
    message.window = window_;
    message.message_type = protocols_;
    message.format = 32;
    message.data.l[0] = static_cast<long>(ping_);
    // Programs send the whole message back. The time tells its answer from a late one to an earlier question,
    // whose connection may have had the same window; the window, from an answer to the window manager.
    time_ = clock_.now();
    message.data.l[1] = static_cast<long>(time_);
    message.data.l[2] = static_cast<long>(window_);
    message.data.l[3] = static_cast<long>(clock_.window());
    XSendEvent(connection_.get(), window_, False, NoEventMask, &event);
  }

  [[nodiscard]] bool isAnswer(const XEvent& event) const {
    const auto& message = event.xclient;
    return event.type == ClientMessage && message.message_type == protocols_ && message.format == 32 &&
           message.data.l[0] == static_cast<long>(ping_) &&
           static_cast<std::uint32_t>(message.data.l[1]) == static_cast<std::uint32_t>(time_) &&
           message.data.l[3] == static_cast<long>(clock_.window());
  }

  Connection& connection_;
  Window window_;
  ServerClock clock_;
  Atom protocols_;
  Atom ping_;
  Time time_ = CurrentTime;
};

}  // namespace

bool awaitEarlierInput(Window window, milliseconds limit, KeyboardIsFree) {
  const auto end = Clock::now() + limit;
  if (window == None) return true;
  const auto connection = Connection::open("");
  if (!connection) return true;
  Question question(*connection, window);
  if (!question.isUnderstood()) return true;
  if (!question.isAnswered(end)) return false;
  // What is gathered is due when the second answer comes: it is carried out before the program reads
  // anything that is sent after that.
  std::this_thread::sleep_for(gathering);
  return question.isAnswered(end);
}

}  // namespace keyvora::x11
