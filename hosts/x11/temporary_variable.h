#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace keyvora::x11 {

/// Sets a variable of the environment, or takes it out, and puts it back: the programs that the user opens
/// from here are to find it as it was. While other threads look at the environment, only for a variable that
/// is there, and not to take it out: the others then stay where they are.
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

}  // namespace keyvora::x11
