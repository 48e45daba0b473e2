#pragma once

#include "platform/console.h"

namespace keyvora::macos {

/// The system console, through NSLog. Any thread.
class Console final : public platform::Console {
 public:
  void write(std::string_view record) override;
};

}  // namespace keyvora::macos
