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

/// What came of one key.
struct Step {
  /// Whether the target was spared the key.
  bool swallowed = false;
  /// Whether the tap goes on collecting letters.
  bool armed = false;
  /// The log lines that it led to.
  std::vector<std::string> logged;
  /// Whether a sequence fired.
  bool fired = false;
};

/// The application's tap and runner on a simulated system, with the target in front and all menus in place
/// that the document names: what keys would do, without doing it. Only one at a time; main thread.
class Rehearsal {
 public:
  explicit Rehearsal(const Mapping& mapping);
  ~Rehearsal();
  Rehearsal(const Rehearsal&) = delete;
  Rehearsal& operator=(const Rehearsal&) = delete;

  /// Option pressed and released by itself.
  Step tapOption();

  /// The key of a letter; the letter is one that a key types.
  Step type(std::string_view letter);

  /// No further key: what happens by itself, and after how long. None when nothing is waited for.
  std::optional<std::pair<std::chrono::milliseconds, Step>> wait();

 private:
  struct Stage;
  std::unique_ptr<Stage> stage_;
};

}  // namespace keyvora::tools
