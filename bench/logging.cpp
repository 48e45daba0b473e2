// The cost of one log line for its caller while two threads log as fast as they can, with and without the
// console copy, compared with spdlog's asynchronous logger. The files and the console (a regular file, like
// a session's error log) are in a scratch folder.

#include <fcntl.h>
#include <spdlog/async.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <thread>
#include <vector>

#include "hosts/posix/console.h"
#include "log/log.h"
#include "tests/support/disk_platform.h"

namespace keyvora::bench {
namespace {

using Clock = std::chrono::steady_clock;
constexpr int threads = 2;
constexpr int lines = 50'000;
const std::string message = "H F C  Fill colour (keytips HFC)";

/// Calls `log` from all threads, and prints the median and the 99th percentile of the time per call.
void measure(const char* name, const std::function<void()>& log) {
  std::vector<std::vector<double>> taken(threads);
  std::vector<std::thread> running;
  for (auto& times : taken) {
    running.emplace_back([&times, &log] {
      times.reserve(lines);
      for (int i = 0; i < lines; ++i) {
        const auto start = Clock::now();
        log();
        times.push_back(std::chrono::duration<double, std::micro>(Clock::now() - start).count());
      }
    });
  }
  for (auto& thread : running) thread.join();
  std::vector<double> all;
  for (const auto& times : taken) all.insert(all.end(), times.begin(), times.end());
  std::ranges::sort(all);
  const auto percentile = [&all](std::size_t hundredths) { return all[all.size() * hundredths / 100]; };
  std::printf("%-38s %8.2f us %8.2f us\n", name, percentile(50), percentile(99));
}

class NoConsole final : public platform::Console {
 public:
  void write(std::string_view) override {}
};

void measureOurs(const char* name, platform::Console& console) {
  test::DiskPlatform disk;
  disk.host.trace.stop();
  const auto& all = disk.platform();
  const platform::Platform logging{
      all.accessibility, all.application, all.applications, all.bundles,      all.clock,    console,
      all.diagnosis,     all.fileSystem,  all.keyboard,     all.loginService, all.mainLoop, all.process,
      all.queues,        all.scripts,     all.statusBar,    all.updates,      all.workspace};
  const platform::Scope scope(logging);
  Log::line(message);
  measure(name, [] { Log::line(message); });
  Log::drain(std::chrono::seconds(60));
}

void measureSpdlog(const char* name, bool console, const std::filesystem::path& folder) {
  constexpr std::size_t queue = 1U << 17U;  // room for all, so that no caller waits
  spdlog::init_thread_pool(queue, 1);
  std::vector<spdlog::sink_ptr> sinks{
      std::make_shared<spdlog::sinks::basic_file_sink_mt>((folder / name).string())};
  if (console) {
    sinks.push_back(std::make_shared<spdlog::sinks::basic_file_sink_mt>((folder / "console").string()));
  }
  auto logger =
      std::make_shared<spdlog::async_logger>(name, sinks.begin(), sinks.end(), spdlog::thread_pool());
  logger->set_pattern("%Y-%m-%d %H:%M:%S %v");
  logger->info(message);
  measure(name, [&logger] { logger->info(message); });
  logger.reset();
  spdlog::shutdown();
}

}  // namespace
}  // namespace keyvora::bench

int main() {
  using namespace keyvora;
  const test::ScratchDirectory scratch;
  std::printf("%-38s %11s %11s\n", "one line, two threads logging", "p50", "p99");
  bench::NoConsole none;
  bench::measureOurs("keyvora, no console", none);
  const int file = ::open((scratch / "console").c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
  posix::Console console(file);
  bench::measureOurs("keyvora, with the console copy", console);
  bench::measureSpdlog("spdlog async, one file", false, scratch.path());
  bench::measureSpdlog("spdlog async, file and console file", true, scratch.path());
  ::close(file);
}
