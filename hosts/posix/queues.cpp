#include "hosts/posix/queues.h"

#include <utility>

#include "hosts/posix/serial_queue.h"

namespace keyvora::posix {

std::unique_ptr<platform::SerialQueue> Queues::createSerial(const std::string& label) {
  return std::make_unique<SerialQueue>(label);
}

void Queues::walk(platform::Plan plan) {
  walkers_.walk(std::move(plan));
}

}  // namespace keyvora::posix
