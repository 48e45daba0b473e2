#pragma once

#include <atomic>

#include "hosts/posix/file_descriptor.h"
#include "platform/console.h"

namespace keyvora::posix {

/// One line per record on standard error, written at once or not at all: a pipe or a terminal that takes no
/// more costs the record, never time.
///
/// Whether writing waits is a property of the open file, which other processes share: it must not be changed
/// under them. Pipes and terminals are therefore opened once more, for this process alone; a socket is told
/// with each record not to wait; a regular file never waits.
class Console final : public platform::Console {
 public:
  explicit Console(int descriptor = STDERR_FILENO);

  void write(std::string_view record) override;

 private:
  enum class Way { file, reopened, socket, polled, none };

  bool send(std::string_view record);

  int target_;
  FileDescriptor reopened_;
  std::atomic<Way> way_;
  /// The record before was cut off: a line break has to come first.
  std::atomic<bool> isCutOff_ = false;
};

}  // namespace keyvora::posix
