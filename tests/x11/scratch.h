#pragma once

#include <cstddef>
#include <filesystem>
#include <iterator>
#include <string>

#include "hosts/posix/temporary_variable.h"
#include "tests/support/scratch_directory.h"

namespace keyvora::x11 {

using test::ScratchDirectory;
using Variable = posix::TemporaryVariable;

/// Sets the file's content, in place; creates missing directories.
inline void writeFile(const std::filesystem::path& file, const std::string& text) {
  std::filesystem::create_directories(file.parent_path());
  test::write(file, text);
}

/// The file's text; empty when it cannot be read.
inline std::string readFile(const std::filesystem::path& file) {
  return test::content(file).value_or("");
}

/// The number of open files of this process.
inline std::ptrdiff_t openFiles() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"),
                       std::filesystem::directory_iterator());
}

/// Writes an executable shell script.
inline void writeProgram(const std::filesystem::path& file, const std::string& commands) {
  writeFile(file, "#!/bin/sh\n" + commands + "\n");
  std::filesystem::permissions(file, std::filesystem::perms::owner_all);
}

}  // namespace keyvora::x11
