#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "mapping/mapping.h"

namespace keyvora::tools {

/// The effect of one key.
struct Step {
  /// Whether the tap swallowed the key.
  bool swallowed = false;
  /// Whether the tap is still collecting letters.
  bool armed = false;
  /// The log lines written because of it.
  std::vector<std::string> logged;
  /// Whether a sequence fired.
  bool fired = false;
};

/// The application's tap and runner on a simulated system, with the target in front and all menus that the
/// document names: shows what keys would do, without doing it. Only one may exist at a time; main thread.
class Rehearsal {
 public:
  explicit Rehearsal(const Mapping& mapping);
  ~Rehearsal();
  Rehearsal(const Rehearsal&) = delete;
  Rehearsal& operator=(const Rehearsal&) = delete;

  /// Option pressed and released by itself.
  Step tapOption();

  /// The key of a letter, which must be one that a key types.
  Step type(std::string_view letter);

  /// Waits without another key: what happens and after how long. None when no timer is running.
  std::optional<std::pair<std::chrono::milliseconds, Step>> wait();

 private:
  struct Stage;
  std::unique_ptr<Stage> stage_;
};

}  // namespace keyvora::tools
