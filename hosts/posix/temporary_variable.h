#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace keyvora::posix {

/// Sets or removes an environment variable and restores it in the destructor, so that programs opened from
/// here get the user's value. While other threads may read the environment, use it only to change a
/// variable that exists: changing a value does not move the other variables.
class TemporaryVariable {
 public:
  TemporaryVariable(const char* name, const std::optional<std::string>& value) : name_(name) {
    if (const char* before = std::getenv(name)) before_ = before;
    set(value);
  }
  ~TemporaryVariable() { set(before_); }
  TemporaryVariable(const TemporaryVariable&) = delete;
  TemporaryVariable& operator=(const TemporaryVariable&) = delete;

 private:
  void set(const std::optional<std::string>& value) const {
    if (value) {
      setenv(name_, value->c_str(), 1);
    } else {
      unsetenv(name_);
    }
  }

  const char* name_;
  std::optional<std::string> before_;
};

}  // namespace keyvora::posix
