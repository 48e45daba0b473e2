// Cancellation and threads. The behaviour of web servers is tested with the whole program.

#include "hosts/x11/updates/curl_fetcher.h"

#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <optional>
#include <stdexcept>
#include <thread>

#include "hosts/simulated/host.h"

namespace keyvora::x11 {
namespace {

using namespace std::chrono_literals;

/// A server that accepts connections and never answers.
class SilentServer {
 public:
  SilentServer() : socket_(::socket(AF_INET, SOCK_STREAM, 0)) {
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

class CurlFetcherTest : public testing::Test {
 protected:
  /// Waits until a fetch's thread has passed its answer to the loop, then runs the loop.
  void answer() {
    const auto deadline = std::chrono::steady_clock::now() + 20s;
    while (host.mainLoop.pending() == 0 && std::chrono::steady_clock::now() < deadline)
      std::this_thread::yield();
    host.advance(0);
  }

  simulated::Host host;
  CurlFetcher fetcher{host.mainLoop};
  SilentServer server;
};

TEST_F(CurlFetcherTest, TheAnswerComesOnTheMainThreadAndMayEndTheFetch) {
  std::optional<appcast::Fetched> got;
  std::unique_ptr<appcast::Fetch> fetch;
  fetch = fetcher.fetch("http://127.0.0.1:1/", {5s, 100}, [&](appcast::Fetched fetched) {
    EXPECT_TRUE(host.mainLoop.isMainThread());
    fetch.reset();
    got = std::move(fetched);
  });
  answer();
  ASSERT_TRUE(got.has_value());
  EXPECT_TRUE(got->error.has_value());
}

TEST_F(CurlFetcherTest, AFetchThatTakesTooLongFails) {
  std::optional<appcast::Fetched> got;
  const auto fetch =
      fetcher.fetch(server.address(), {1s, 100}, [&](appcast::Fetched fetched) { got = std::move(fetched); });
  answer();
  ASSERT_TRUE(got.has_value());
  EXPECT_EQ(got->error, "it took longer than 1 seconds");
}

TEST_F(CurlFetcherTest, CancellingIsPromptAndLeavesNoAnswer) {
  bool answered = false;
  auto fetch = fetcher.fetch(server.address(), {60s, 100}, [&](const appcast::Fetched&) { answered = true; });
  const auto start = std::chrono::steady_clock::now();
  fetch.reset();
  EXPECT_LT(std::chrono::steady_clock::now() - start, 5s);
  host.advance(0);
  EXPECT_FALSE(answered);
}

TEST_F(CurlFetcherTest, AnAnswerOnItsWayIsDroppedWithItsFetch) {
  bool answered = false;
  auto fetch =
      fetcher.fetch("http://127.0.0.1:1/", {5s, 100}, [&](const appcast::Fetched&) { answered = true; });
  const auto deadline = std::chrono::steady_clock::now() + 20s;
  while (host.mainLoop.pending() == 0 && std::chrono::steady_clock::now() < deadline)
    std::this_thread::yield();
  fetch.reset();
  host.advance(0);
  EXPECT_FALSE(answered);
}

}  // namespace
}  // namespace keyvora::x11
