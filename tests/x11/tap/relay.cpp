#include "tests/x11/tap/relay.h"

#include <X11/X.h>
#include <X11/Xproto.h>
#include <X11/extensions/XI2.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstring>
#include <optional>
#include <stdexcept>

namespace keyvora::x11 {
namespace {

constexpr int pollMilliseconds = 20;
constexpr std::chrono::seconds longestHold{2};

std::string socketOf(const std::string& displayName) {
  return "/tmp/.X11-unix/X" + displayName.substr(1);
}

sockaddr_un address(const std::string& path) {
  sockaddr_un made{};
  made.sun_family = AF_UNIX;
  path.copy(made.sun_path, sizeof made.sun_path - 1);
  return made;
}

void sendAll(int to, const std::string& bytes) {
  for (std::size_t sent = 0; sent < bytes.size();) {
    const auto count = send(to, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
    if (count <= 0) return;
    sent += std::size_t(count);
  }
}

template <class Number>
Number numberAt(const std::string& bytes, std::size_t place) {
  Number number = 0;
  std::memcpy(&number, bytes.data() + place, sizeof number);
  return number;
}

/// The size of the server's message at the start of these bytes; none while they are too few to tell.
std::optional<std::size_t> messageSize(const std::string& said, bool greeted) {
  if (!greeted) return said.size() < 8 ? std::nullopt : std::optional(8 + 4U * numberAt<CARD16>(said, 6));
  if (said.size() < 32) return std::nullopt;
  const auto type = numberAt<CARD8>(said, 0) & 0x7F;
  return type == X_Reply || type == GenericEvent ? 32 + 4UL * numberAt<CARD32>(said, 4) : 32;
}

/// Whether it is a press on the master keyboard, which has this number on every server.
bool isRawPress(const std::string& message) {
  constexpr int masterKeyboard = 3;
  return (numberAt<CARD8>(message, 0) & 0x7F) == GenericEvent &&
         numberAt<CARD16>(message, 8) == XI_RawKeyPress && numberAt<CARD16>(message, 10) == masterKeyboard;
}

}  // namespace

Relay::Relay(const std::string& displayName) : serverPath_(socketOf(displayName)) {
  listening_ = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  // Above the numbers that servers choose themselves.
  constexpr int first = 7000;
  constexpr int last = 7999;
  for (int number = first; number <= last && name_.empty(); ++number) {
    const auto name = ":" + std::to_string(number);
    const auto here = address(socketOf(name));
    if (bind(listening_, reinterpret_cast<const sockaddr*>(&here), sizeof here) == 0) name_ = name;
  }
  if (name_.empty() || listen(listening_, 1) != 0) throw std::runtime_error("no display number is free");
  thread_ = std::thread([this] { work(); });
}

Relay::~Relay() {
  ending_ = true;
  thread_.join();
  for (const int file : {listening_, client_, server_}) {
    if (file >= 0) close(file);
  }
  unlink(socketOf(name_).c_str());
}

void Relay::work() {
  const auto there = address(serverPath_);
  std::string said;
  std::chrono::steady_clock::time_point heldUntil{};  // in the past
  while (!ending_) {
    std::array<pollfd, 3> files{
        {{client_ < 0 ? listening_ : -1, POLLIN, 0}, {client_, POLLIN, 0}, {server_, POLLIN, 0}}};
    poll(files.data(), files.size(), pollMilliseconds);
    std::array<char, 65536> bytes{};
    if ((files[0].revents & POLLIN) != 0) {
      client_ = accept4(listening_, nullptr, nullptr, SOCK_CLOEXEC);
      server_ = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
      if (connect(server_, reinterpret_cast<const sockaddr*>(&there), sizeof there) != 0) return;
    }
    if ((files[1].revents & POLLIN) != 0) {
      const auto size = recv(client_, bytes.data(), bytes.size(), 0);
      if (size <= 0) return;
      sendAll(server_, {bytes.data(), std::size_t(size)});
      heldUntil = {};
    }
    if ((files[2].revents & POLLIN) != 0) {
      const auto size = recv(server_, bytes.data(), bytes.size(), 0);
      if (size <= 0) return;
      said.append(bytes.data(), std::size_t(size));
    }
    if (std::chrono::steady_clock::now() < heldUntil) continue;
    const bool wasHolding = holding_;
    passOn(said);
    if (wasHolding && !holding_) heldUntil = std::chrono::steady_clock::now() + longestHold;
  }
}

/// Passes whole messages on, up to the press after which everything is held back.
void Relay::passOn(std::string& said) {
  for (;;) {
    const auto size = messageSize(said, greeted_);
    if (!size || said.size() < *size) return;
    const auto message = said.substr(0, *size);
    said.erase(0, *size);
    sendAll(client_, message);
    const bool isFirst = greeted_ && isRawPress(message) && holding_.exchange(false);
    greeted_ = true;
    if (isFirst) return;
  }
}

}  // namespace keyvora::x11
