#pragma once

#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <optional>
#include <string>

#include "tests/support/scratch_directory.h"

namespace keyvora::x11 {

using test::ScratchDirectory;

/// Sets a variable of the environment, or removes it, and puts it back afterwards.
class Variable {
 public:
  Variable(const char* name, const std::optional<std::string>& value) : name_(name) {
    if (const char* before = getenv(name)) before_ = before;
    set(value);
  }
  ~Variable() { set(before_); }
  Variable(const Variable&) = delete;
  Variable& operator=(const Variable&) = delete;

 private:
  void set(const std::optional<std::string>& value) {
    if (value) {
      setenv(name_, value->c_str(), 1);
    } else {
      unsetenv(name_);
    }
  }

  const char* name_;
  std::optional<std::string> before_;
};

/// Makes the text the file's whole content, in place; its directories are made as needed.
inline void writeFile(const std::filesystem::path& file, const std::string& text) {
  std::filesystem::create_directories(file.parent_path());
  test::write(file, text);
}

/// The file's text; empty when it cannot be read.
inline std::string readFile(const std::filesystem::path& file) {
  return test::content(file).value_or("");
}

/// How many files this process has open.
inline std::ptrdiff_t openFiles() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"),
                       std::filesystem::directory_iterator());
}

/// A program of shell commands.
inline void writeProgram(const std::filesystem::path& file, const std::string& commands) {
  writeFile(file, "#!/bin/sh\n" + commands + "\n");
  std::filesystem::permissions(file, std::filesystem::perms::owner_all);
}

}  // namespace keyvora::x11
