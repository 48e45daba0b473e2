#pragma once

namespace keyvora::x11 {

/// Wakes a thread that waits in `poll`: readable from `signal` until `clear`. Any thread.
class Wakeup {
 public:
  Wakeup();
  ~Wakeup();
  Wakeup(const Wakeup&) = delete;
  Wakeup& operator=(const Wakeup&) = delete;

  void signal() const;
  void clear() const;

  [[nodiscard]] int fileDescriptor() const { return fileDescriptor_; }

 private:
  int fileDescriptor_;
};

}  // namespace keyvora::x11
