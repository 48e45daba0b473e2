#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

/// Files read by tests: the project's own, and expected outputs.
namespace keyvora::tools {

inline std::string contentOf(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  EXPECT_TRUE(stream) << file << " cannot be read";
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

inline std::filesystem::path projectFile(const std::string& path) {
  return std::filesystem::path(KEYVORA_SOURCE) / path;
}

/// A file of tests/tools/golden.
inline std::string golden(const std::string& name) {
  return contentOf(projectFile("tests/tools/golden/" + name));
}

}  // namespace keyvora::tools
