#pragma once

namespace keyvora {

/// While one lives, the system starts no thread in this process. Its source stands in for the C library's
/// function, so it is linked into tests that are alone in their program.
class NoThreads {
 public:
  NoThreads();
  ~NoThreads();
  NoThreads(const NoThreads&) = delete;
  NoThreads& operator=(const NoThreads&) = delete;

  /// How many were asked for meanwhile.
  [[nodiscard]] int refused() const;
};

}  // namespace keyvora
