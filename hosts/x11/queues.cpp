#include "hosts/x11/queues.h"

#include <utility>

namespace keyvora::x11 {

std::unique_ptr<platform::SerialQueue> Queues::createSerial(const std::string& label) {
  return threads_.createSerial(label);
}

void Queues::walk(platform::Plan plan) {
  for (auto& step : plan) {
    step = [window = target_.get(), step = std::move(step)] {
      const TargetWindow::Binding binding(window);
      return step();
    };
  }
  threads_.walk(std::move(plan));
}

}  // namespace keyvora::x11
