// Starting, cancelling and failing. The behaviour of web servers is tested with the whole program.

#include "hosts/x11/updates/fetch_process.h"

#include <glib.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <optional>
#include <stdexcept>

#include "hosts/x11/loop/main_loop.h"
#include "hosts/x11/updates/fetch/answer.h"
#include "tests/x11/private_display.h"

namespace keyvora::x11 {
namespace {

using namespace std::chrono_literals;

/// A server that accepts connections and never answers.
class SilentServer {
 public:
  SilentServer() : socket_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* generic = reinterpret_cast<sockaddr*>(&address);
    if (bind(socket_, generic, size) != 0 || listen(socket_, 8) != 0 ||
        getsockname(socket_, generic, &size) != 0) {
      throw std::runtime_error("no server socket");
    }
    port_ = ntohs(address.sin_port);
  }
  ~SilentServer() { close(socket_); }
  SilentServer(const SilentServer&) = delete;
  SilentServer& operator=(const SilentServer&) = delete;

  [[nodiscard]] std::string address() const { return "http://127.0.0.1:" + std::to_string(port_) + "/"; }

 private:
  int socket_;
  int port_ = 0;
};

/// The child processes of the main thread.
std::vector<pid_t> children() {
  const auto own = std::to_string(getpid());
  std::ifstream file("/proc/" + own + "/task/" + own + "/children");
  std::vector<pid_t> found;
  for (pid_t child = 0; file >> child;) found.push_back(child);
  return found;
}

class FetchProcessTest : public testing::Test {
 protected:
  std::unique_ptr<appcast::Fetch> fetch(const std::string& address, std::chrono::milliseconds time = 60s) {
    return fetcher.fetch(address, {time, 100}, [this](appcast::Fetched fetched) {
      EXPECT_TRUE(loop.isMainThread());
      answer = std::move(fetched);
    });
  }

  bool awaitAnswer() {
    return runUntil([this] { return answer.has_value(); });
  }

  /// Runs the loop until the program has ended.
  bool awaitEnd() {
    return runUntil([] { return children().empty(); });
  }

  MainLoop loop;
  FetchProcess fetcher{loop, KEYVORA_FETCH_PROGRAM};
  SilentServer server;
  std::optional<appcast::Fetched> answer;
};

TEST_F(FetchProcessTest, TheAnswerComesOnTheMainThreadAndMayEndTheFetch) {
  std::unique_ptr<appcast::Fetch> running;
  running = fetcher.fetch("http://127.0.0.1:1/", {60s, 100}, [&](appcast::Fetched fetched) {
    EXPECT_TRUE(loop.isMainThread());
    running.reset();
    answer = std::move(fetched);
  });
  EXPECT_FALSE(answer);
  ASSERT_TRUE(awaitAnswer());
  EXPECT_EQ(answer->address, "http://127.0.0.1:1/");
  EXPECT_EQ(answer->error.value_or("").substr(0, 35), "Failed to connect to 127.0.0.1 port")
      << *answer->error;
  EXPECT_TRUE(awaitEnd());
}

TEST_F(FetchProcessTest, AFetchThatTakesTooLongFails) {
  const auto running = fetch(server.address(), 1s);
  ASSERT_TRUE(awaitAnswer());
  EXPECT_EQ(answer->error, "it took longer than 1 seconds");
}

TEST_F(FetchProcessTest, CancellingEndsTheProgramAndLeavesNoAnswer) {
  auto running = fetch(server.address());
  ASSERT_EQ(children().size(), 1u);
  running.reset();
  EXPECT_TRUE(awaitEnd());
  EXPECT_FALSE(answer);
}

TEST_F(FetchProcessTest, AnAnswerOnItsWayIsDroppedWithItsFetch) {
  auto running = fetch("http://127.0.0.1:1/");
  // The loop does not run, so the answer is still unread when its program has ended.
  const auto deadline = std::chrono::steady_clock::now() + patience;
  while (!children().empty() && std::chrono::steady_clock::now() < deadline) usleep(1000);
  running.reset();
  runUntil([] { return g_main_context_pending(nullptr) == FALSE; });
  EXPECT_FALSE(answer);
}

TEST_F(FetchProcessTest, AProgramThatIsKilledOrBreaksOffIsAnError) {
  const auto running = fetch(server.address());
  ASSERT_EQ(children().size(), 1u);
  kill(children().front(), SIGSEGV);
  ASSERT_TRUE(awaitAnswer());
  EXPECT_EQ(answer->error, "its program was ended by signal 11");
  EXPECT_EQ(answer->address, server.address());
  EXPECT_EQ(answer->bytes, "");

  answer.reset();
  FetchProcess other(loop, "/bin/false");
  const auto failing = other.fetch("http://127.0.0.1:1/", {}, [this](auto fetched) { answer = fetched; });
  ASSERT_TRUE(awaitAnswer());
  EXPECT_EQ(answer->error, "its program ended with status 1");
}

TEST_F(FetchProcessTest, AProgramThatIsNotThereIsAnErrorFromTheLoop) {
  FetchProcess none(loop, "/nowhere/keyvora-fetch");
  const auto start = [&] {
    return none.fetch("http://127.0.0.1:1/", {}, [this](auto fetched) { answer = fetched; });
  };
  const auto running = start();
  EXPECT_FALSE(answer);
  ASSERT_TRUE(awaitAnswer());
  EXPECT_EQ(answer->error.value_or("").substr(0, 32), "its program cannot be started: F") << *answer->error;
  EXPECT_EQ(answer->address, "http://127.0.0.1:1/");

  answer.reset();
  start().reset();
  runUntil([] { return g_main_context_pending(nullptr) == FALSE; });
  EXPECT_FALSE(answer);
}

TEST_F(FetchProcessTest, StartedByHandItSaysWhatItIs) {
  for (const auto* arguments :
       {"", "http://127.0.0.1:1/", "http://127.0.0.1:1/ 1 1x", "http://127.0.0.1:1/ -1 1"}) {
    Child program(
        {"sh", "-c", std::string("exec \"$0\" ") + arguments + " 2>/dev/null", KEYVORA_FETCH_PROGRAM}, {});
    const int status = program.wait();
    ASSERT_TRUE(WIFEXITED(status)) << arguments;
    EXPECT_EQ(WEXITSTATUS(status), 2) << arguments;
  }
}

TEST(FetchAnswer, IsReadAsItWasWritten) {
  const auto same = [](const appcast::Fetched& fetched) {
    const auto read = decodeAnswer(encodeAnswer(fetched));
    return read && read->address == fetched.address && read->error == fetched.error &&
           read->bytes == fetched.bytes;
  };
  EXPECT_TRUE(same({"<rss>\n\n</rss>\n", "https://example.org/feed", std::nullopt}));
  EXPECT_TRUE(same({"", "", std::nullopt}));
  EXPECT_TRUE(same({std::string("\0\n\xFF", 3), "https://example.org/ü", "it broke off"}));
}

TEST(FetchAnswer, HasOneLineForWhatAServerSays) {
  const auto read = decodeAnswer(encodeAnswer({"bytes", "a\nb", "c\r\nd"}));
  ASSERT_TRUE(read);
  EXPECT_EQ(read->address, "a b");
  EXPECT_EQ(read->error, "c  d");
  EXPECT_EQ(read->bytes, "bytes");
}

TEST(FetchAnswer, ThatIsCutOffIsNone) {
  for (const auto* text : {"", "https://example.org/", "https://example.org/\nan err"}) {
    EXPECT_FALSE(decodeAnswer(text)) << text;
  }
}

}  // namespace
}  // namespace keyvora::x11
