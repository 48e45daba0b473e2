#pragma once

#include <atomic>

#include "hosts/posix/file_descriptor.h"
#include "platform/console.h"

namespace keyvora::posix {

/// One line per record on standard error, written at once or not at all: a pipe or terminal that takes no
/// more loses the record instead of blocking.
///
/// Whether a write blocks is a property of the open file description, which other processes share, so it
/// must not be changed. Pipes and terminals are therefore opened once more, for this process alone; a
/// socket gets MSG_DONTWAIT with each record; a regular file never blocks.
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
  /// The last record was cut off: a line feed must come before the next.
  std::atomic<bool> isCutOff_ = false;
};

}  // namespace keyvora::posix
