#pragma once

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace keyvora::x11 {

/// A directory for one test, removed afterwards with all that is in it.
class ScratchDirectory {
 public:
  ScratchDirectory() {
    std::string name = (std::filesystem::temp_directory_path() / "keyvora-test-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary directory");
    path_ = name;
  }
  ~ScratchDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  ScratchDirectory(const ScratchDirectory&) = delete;
  ScratchDirectory& operator=(const ScratchDirectory&) = delete;

  [[nodiscard]] const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

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
inline void writeFile(const std::filesystem::path& file, std::string_view text) {
  std::filesystem::create_directories(file.parent_path());
  std::ofstream(file, std::ios::binary) << text;
}

inline std::string readFile(const std::filesystem::path& file) {
  std::ostringstream text;
  text << std::ifstream(file, std::ios::binary).rdbuf();
  return text.str();
}

/// A program of shell commands.
inline void writeProgram(const std::filesystem::path& file, const std::string& commands) {
  writeFile(file, "#!/bin/sh\n" + commands + "\n");
  std::filesystem::permissions(file, std::filesystem::perms::owner_all);
}

}  // namespace keyvora::x11
