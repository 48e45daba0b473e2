#pragma once

namespace keyvora {

/// While it exists, the system starts no thread in this process. It replaces a function of the C library,
/// so link it only into a program whose tests all need it.
class NoThreads {
 public:
  NoThreads();
  ~NoThreads();
  NoThreads(const NoThreads&) = delete;
  NoThreads& operator=(const NoThreads&) = delete;

  /// How many threads were refused.
  [[nodiscard]] int refused() const;
};

}  // namespace keyvora
