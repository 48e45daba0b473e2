#pragma once

#include <sys/socket.h>

#include <cerrno>
#include <optional>
#include <utility>

#include "hosts/posix/file_descriptor.h"

namespace keyvora::x11 {

/// One end of a pair of SOCK_SEQPACKET sockets that carries whole records. Never blocks. The user provides
/// the locking.
template <class Incoming, class Outgoing>
class RecordSocket {
 public:
  explicit RecordSocket(posix::FileDescriptor socket) : socket_(std::move(socket)) {}

  /// False when there is no room, or the other end is closed.
  bool send(const Outgoing& record) {
    return ::send(socket_.number(), &record, sizeof record, MSG_DONTWAIT | MSG_NOSIGNAL) ==
           ssize_t(sizeof record);
  }

  /// The next record; none when there is none yet, or there will be no more (`ended`).
  std::optional<Incoming> receive() {
    std::optional<Incoming> record(std::in_place);
    for (;;) {
      const auto size = recv(socket_.number(), &*record, sizeof *record, MSG_DONTWAIT | MSG_TRUNC);
      if (size == ssize_t(sizeof *record)) return record;
      if (size < 0 && errno == EINTR) continue;
      // The end of the stream, or data of another size: the peer is not a compatible one.
      if (size >= 0 || errno != EAGAIN) ended_ = true;
      return std::nullopt;
    }
  }

  /// Whether the other end was closed and all its records were received.
  [[nodiscard]] bool ended() const { return ended_; }

  /// Closes the direction to the other end.
  void finish() { shutdown(socket_.number(), SHUT_WR); }

  /// Readable when `receive` has something to return.
  [[nodiscard]] int fileDescriptor() const { return socket_.number(); }

 private:
  posix::FileDescriptor socket_;
  bool ended_ = false;
};

}  // namespace keyvora::x11
