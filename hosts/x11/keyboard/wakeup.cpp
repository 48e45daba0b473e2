#include "hosts/x11/keyboard/wakeup.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cstdint>

#include "platform/fatal.h"

namespace keyvora::x11 {

Wakeup::Wakeup() : fileDescriptor_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  if (fileDescriptor_ < 0) platform::fatal("no file descriptor is left for the event tap");
}

Wakeup::~Wakeup() {
  close(fileDescriptor_);
}

void Wakeup::signal() const {
  const std::uint64_t one = 1;
  [[maybe_unused]] const auto written = write(fileDescriptor_, &one, sizeof one);
}

void Wakeup::clear() const {
  std::uint64_t count = 0;
  [[maybe_unused]] const auto got = read(fileDescriptor_, &count, sizeof count);
}

}  // namespace keyvora::x11
