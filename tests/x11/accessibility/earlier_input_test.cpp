#include <gtest/gtest.h>  // before Xlib, whose macros conflict with it

#include "hosts/x11/accessibility/earlier_input.h"

#include <X11/Xutil.h>
#include <poll.h>

#include <atomic>
#include <functional>
#include <optional>
#include <thread>

#include "hosts/x11/display.h"
#include "tests/x11/private_session.h"

namespace keyvora::x11 {
namespace {

using std::chrono::milliseconds;

/// Enough for every question to arrive, and too short for a test that waits it out to take long.
constexpr milliseconds shortLimit{300};

/// A window of a program that is asked whether it answers. Runs on a thread of its own.
class AskedWindow {
 public:
  /// What the program does with a question; the answer, if any, goes to the root window.
  using Answer = std::function<std::optional<XClientMessageEvent>(const XClientMessageEvent& question)>;

  /// Without `protocol` the window does not say that its program answers.
  explicit AskedWindow(Answer answer, bool protocol = true)
      : connection_(Connection::open("")), answer_(std::move(answer)) {
    Display* display = connection_->get();
    window_ = XCreateSimpleWindow(display, connection_->root(), 0, 0, 10, 10, 0, 0, 0);
    Atom ping = connection_->atom("_NET_WM_PING");
    if (protocol) XSetWMProtocols(display, window_, &ping, 1);
    XSync(display, False);
    thread_ = std::thread([this] { run(); });
  }

  ~AskedWindow() {
    ends_ = true;
    thread_.join();
  }

  AskedWindow(const AskedWindow&) = delete;
  AskedWindow& operator=(const AskedWindow&) = delete;

  [[nodiscard]] Window window() const { return window_; }

  /// How often it was asked so far.
  [[nodiscard]] int questions() const { return questions_; }

 private:
  void run() {
    Display* display = connection_->get();
    while (!ends_) {
      pollfd source{connection_->fileDescriptor(), POLLIN, 0};
      if (XPending(display) == 0) poll(&source, 1, 10);
      while (XPending(display) > 0) {
        XEvent event;
        XNextEvent(display, &event);
        if (event.type == ClientMessage) asked(event.xclient);
      }
    }
  }

  void asked(const XClientMessageEvent& question) {
    ++questions_;
    const auto answer = answer_(question);
    if (!answer) return;
    XEvent event{};
    event.xclient = *answer;
    event.xclient.window = connection_->root();
    XSendEvent(connection_->get(), connection_->root(), False,
               SubstructureNotifyMask | SubstructureRedirectMask, &event);
    XFlush(connection_->get());
  }

  std::unique_ptr<Connection> connection_;
  Answer answer_;
  Window window_ = None;
  std::atomic<int> questions_ = 0;
  std::atomic<bool> ends_ = false;
  std::thread thread_;
};

class EarlierInputTest : public testing::Test {
 protected:
  bool await(const AskedWindow& asked, milliseconds limit) {
    return awaitEarlierInput(asked.window(), limit, tap_.letGo());
  }

 private:
  PrivateSession& session_ = PrivateSession::shared();
  CurrentTap tap_;
};

TEST_F(EarlierInputTest, AProgramThatAnswersIsAskedTwice) {
  const AskedWindow asked([](const auto& question) { return question; });
  EXPECT_TRUE(await(asked, patience));
  EXPECT_EQ(asked.questions(), 2) << "the second time after what the program gathers";
}

TEST_F(EarlierInputTest, AProgramThatDoesNotAnswerIsNotWaitedForLongerThanTheLimit) {
  const AskedWindow asked([](const auto&) { return std::nullopt; });
  EXPECT_FALSE(await(asked, shortLimit));
}

TEST_F(EarlierInputTest, AProgramThatTakesNoPartIsNotAsked) {
  const AskedWindow asked([](const auto&) { return std::nullopt; }, false);
  EXPECT_TRUE(await(asked, shortLimit));
}

TEST_F(EarlierInputTest, AWindowThatIsGoneIsNotAsked) {
  const auto connection = Connection::open("");
  const auto gone = XCreateSimpleWindow(connection->get(), connection->root(), 0, 0, 10, 10, 0, 0, 0);
  XDestroyWindow(connection->get(), gone);
  XSync(connection->get(), False);
  for (const auto window : {gone, Window{None}}) {
    EXPECT_TRUE(awaitEarlierInput(window, shortLimit, CurrentTap().letGo()));
  }
}

TEST_F(EarlierInputTest, ALateAnswerToAnEarlierQuestionIsNone) {
  std::optional<XClientMessageEvent> first;
  const AskedWindow asked([&](const auto& question) {
    const bool isFirst = !first;
    if (isFirst) first = question;
    return isFirst ? std::nullopt : first;
  });
  EXPECT_FALSE(await(asked, shortLimit));
  EXPECT_FALSE(await(asked, shortLimit)) << "it got the answer to the first question";
}

TEST_F(EarlierInputTest, AnAnswerToSomebodyElseIsNone) {
  const AskedWindow asked([](auto question) {
    question.data.l[3] = 0;
    return std::optional(question);
  });
  EXPECT_FALSE(await(asked, shortLimit));
}

}  // namespace
}  // namespace keyvora::x11
