#include <rapidjson/document.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "tests/vectors/line.h"
#include "tests/vectors/vector_kind.h"

/// Runs the test vectors in the folder named by the environment variable KEYVORA_VECTORS, or the project's
/// own. The folder need not have files of every kind. Status 0 when every line of every file passes.
namespace keyvora::vectors {
namespace {

constexpr std::size_t shownFailures = 5;
constexpr std::size_t shownLength = 2000;

struct Count {
  std::size_t cases = 0;
  std::size_t failures = 0;
};

std::string cut(const std::string& text) {
  return text.size() <= shownLength ? text : text.substr(0, shownLength) + "…";
}

/// Why a line fails; none when it passes.
std::optional<Mismatch> check(const VectorKind& kind, const std::string& json) {
  rapidjson::Document line;
  line.Parse<rapidjson::kParseIterativeFlag>(json.data(), json.size());
  if (line.HasParseError() || !line.IsObject()) return Mismatch{"a JSON object on the line", json};
  try {
    return kind.check(line);
  } catch (const MalformedLine& error) {
    return Mismatch{"a line with the fields of its kind", error.what()};
  }
}

Count run(const VectorKind& kind, const std::filesystem::path& path) {
  Count count;
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    std::printf("%s: cannot be read\n", path.c_str());
    return {0, 1};
  }
  std::string json;
  for (std::size_t number = 1; std::getline(file, json); ++number) {
    if (json.find_first_not_of(" \t\r") == std::string::npos) continue;
    ++count.cases;
    const auto mismatch = check(kind, json);
    if (!mismatch || ++count.failures > shownFailures) continue;
    std::printf("%s:%zu:\n  line:     %s\n  expected: %s\n  actual:   %s\n", path.c_str(), number,
                cut(json).c_str(), cut(mismatch->expected).c_str(), cut(mismatch->actual).c_str());
  }
  std::printf("%-16s %6zu cases, %zu failures\n", path.filename().c_str(), count.cases, count.failures);
  return count;
}

const VectorKind* kindOf(const std::filesystem::path& path) {
  const auto kinds = vectorKinds();
  const auto name = path.filename().string();
  const auto kind = std::ranges::find(kinds, name, &VectorKind::file);
  return kind == kinds.end() ? nullptr : &*kind;
}

/// The vector files of a folder, in order; other files (a README) are ignored.
std::vector<std::filesystem::path> vectorFiles(const std::filesystem::path& folder, std::error_code& error) {
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
    if (entry.path().extension() == ".jsonl") files.push_back(entry.path());
  }
  std::ranges::sort(files);
  return files;
}

int run(const std::filesystem::path& folder) {
  std::error_code error;
  const auto files = vectorFiles(folder, error);
  if (error) {
    std::printf("%s: cannot be read: %s\n", folder.c_str(), error.message().c_str());
    return EXIT_FAILURE;
  }
  Count total;
  for (const auto& file : files) {
    const VectorKind* kind = kindOf(file);
    if (kind == nullptr) {
      std::printf("%s: no vectors of this name are known\n", file.c_str());
      ++total.failures;
      continue;
    }
    const Count count = run(*kind, file);
    total.cases += count.cases;
    total.failures += count.failures;
  }
  std::printf("%s: %zu cases, %zu failures\n", folder.c_str(), total.cases, total.failures);
  if (total.cases == 0) std::printf("%s: no cases here\n", folder.c_str());
  return total.cases > 0 && total.failures == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace
}  // namespace keyvora::vectors

int main() {
  const char* named = std::getenv("KEYVORA_VECTORS");
  return keyvora::vectors::run(named != nullptr && *named != '\0' ? named : KEYVORA_VECTORS_DEFAULT);
}
