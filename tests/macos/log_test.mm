// The log on this host's own files, queue, clock and console; only the Library directory is replaced.

#include "log/log.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <regex>
#include <string>
#include <thread>
#include <vector>

#include "platform/host.h"
#include "tests/macos/scratch_directory.h"

namespace keyvora::macos {
namespace {

/// The host's file system with another Library directory.
class ScratchLibrary final : public platform::FileSystem {
 public:
  explicit ScratchLibrary(platform::FileSystem& real) : real_(real) {}

  [[nodiscard]] std::string log() const {
    std::ifstream file(library_.path() / "Logs/keyvora.log", std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  std::optional<std::filesystem::path> applicationSupportDirectory() override { return std::nullopt; }
  std::optional<std::filesystem::path> libraryDirectory() override { return library_.path(); }
  bool createDirectories(const std::filesystem::path& path) override { return real_.createDirectories(path); }
  bool exists(const std::filesystem::path& path) override { return real_.exists(path); }
  bool copy(const std::filesystem::path& from, const std::filesystem::path& to) override {
    return real_.copy(from, to);
  }
  platform::FileContents read(const std::filesystem::path& path) override { return real_.read(path); }
  bool append(const std::filesystem::path& path, std::string_view bytes) override {
    return real_.append(path, bytes);
  }
  bool replace(const std::filesystem::path& path, std::string_view bytes) override {
    return real_.replace(path, bytes);
  }
  std::unique_ptr<platform::FileWatch> watch(const std::filesystem::path& path,
                                             std::function<void()> handler) override {
    return real_.watch(path, std::move(handler));
  }

 private:
  platform::FileSystem& real_;
  ScratchDirectory library_;
};

class LogOnThisHost : public testing::Test {
 protected:
  std::unique_ptr<platform::Host> host_ = platform::createHost();
  const platform::Platform& real_ = host_->platform();
  ScratchLibrary files_{real_.fileSystem};
  platform::Platform platform_{real_.accessibility, real_.application,  real_.applications, real_.bundles,
                               real_.clock,         real_.console,      real_.diagnosis,    files_,
                               real_.keyboard,      real_.loginService, real_.mainLoop,     real_.process,
                               real_.queues,        real_.scripts,      real_.statusBar,    real_.updates,
                               real_.workspace};
  platform::Scope scope_{platform_};
};

TEST_F(LogOnThisHost, WritesStampedRecordsInTheOrderOfTheCalls) {
  Log::line("launch 1.2 (42)");
  Log::line("");
  Log::line("two\nlines, é ⌥ 😀");
  Log::drain(std::chrono::seconds(5));
  EXPECT_TRUE(std::regex_match(
      files_.log(), std::regex("[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2} launch 1\\.2 \\(42\\)\n"
                               "[0-9: -]{19} \n"
                               "[0-9: -]{19} two\nlines, é ⌥ 😀\n")))
      << files_.log();
}

TEST_F(LogOnThisHost, TakesRecordsFromAnyThreadWithoutMixingThem) {
  std::vector<std::thread> threads;
  for (int writer = 0; writer < 4; ++writer) {
    threads.emplace_back([] {
      for (int record = 0; record < 25; ++record) Log::line("0123456789");
    });
  }
  for (auto& thread : threads) thread.join();
  Log::drain(std::chrono::seconds(5));
  const std::string log = files_.log();
  EXPECT_EQ(log.size(), 100 * (19 + 1 + 10 + 1));
  EXPECT_TRUE(std::regex_match(log.substr(0, 31), std::regex("[0-9: -]{19} 0123456789\n")));
}

}  // namespace
}  // namespace keyvora::macos
