// usage: bench_bare_reload
// Watches the document in HOME and does after each change what the system must be asked for a reload: the end
// of the quiet, the delay, the read, the line on standard error and in a log, the new watch. It decodes
// nothing, has no menu and no toolkit: the lower bound for a program that reloads. Runs until a signal ends
// it.

#include <fcntl.h>
#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <condition_variable>
#include <cstdlib>
#include <filesystem>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <utility>

namespace {

/// In milliseconds, as in the program.
constexpr int quiet = 5;
constexpr int delay = 200;

void write(int descriptor, std::string_view text) {
  if (::write(descriptor, text.data(), text.size()) < 0) std::exit(EXIT_FAILURE);
}

/// Writes a record on a thread of its own.
class Log {
 public:
  explicit Log(std::string path) : path_(std::move(path)), thread_([this] { run(); }) {}

  void line() {
    const std::scoped_lock lock(mutex_);
    ++records_;
    wakeup_.notify_one();
  }

 private:
  void run() {
    for (std::unique_lock lock(mutex_);;) {
      wakeup_.wait(lock, [this] { return records_ > 0; });
      --records_;
      lock.unlock();
      const int file = open(path_.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0644);
      write(file, "2000-01-01 00:00:00 mappings reloaded, 3 sequences\n");
      close(file);
      lock.lock();
    }
  }

  std::string path_;
  std::mutex mutex_;
  std::condition_variable wakeup_;
  int records_ = 0;
  std::thread thread_;
};

void watch(int inotify, const std::string& document) {
  constexpr auto events = IN_MODIFY | IN_ATTRIB | IN_MOVE_SELF | IN_DELETE_SELF;
  if (inotify_add_watch(inotify, document.c_str(), events) < 0) std::exit(EXIT_FAILURE);
}

void awaitChange(int inotify) {
  std::array<char, 4096> reports{};
  pollfd changes{inotify, POLLIN, 0};
  for (int limit = -1; poll(&changes, 1, limit) > 0; limit = quiet) {
    if (::read(inotify, reports.data(), reports.size()) <= 0) std::exit(EXIT_FAILURE);
  }
}

void readDocument(const std::string& document) {
  std::array<char, 65536> content;
  const int file = open(document.c_str(), O_RDONLY | O_CLOEXEC);
  if (::read(file, content.data(), content.size()) <= 0) std::exit(EXIT_FAILURE);
  close(file);
}

}  // namespace

int main() {
  const char* home = std::getenv("HOME");
  if (home == nullptr) return EXIT_FAILURE;
  const auto library = std::filesystem::path(home) / "Library";
  const std::string document = library / "Application Support" / "keyvora" / "mappings.json";
  std::filesystem::create_directories(library / "Logs");
  const int inotify = inotify_init1(IN_CLOEXEC);
  watch(inotify, document);
  Log log(library / "Logs" / "bare.log");
  for (write(STDERR_FILENO, "ready\n");;) {
    awaitChange(inotify);
    poll(nullptr, 0, delay);
    readDocument(document);
    write(STDERR_FILENO, "mappings reloaded, 3 sequences\n");
    log.line();
    watch(inotify, document);
  }
}
