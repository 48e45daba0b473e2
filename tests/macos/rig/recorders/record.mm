#include "tests/macos/rig/recorders/record.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <mutex>

#include "tests/macos/rig/recorders/descriptors.h"
#include "tests/macos/rig/recorders/dispatch_queues.h"

namespace keyvora::rig {
namespace {

/// The exit status after a broken rule.
constexpr int brokeARule = 99;

struct Counts {
  int made = 0;
  int live = 0;
};

struct Record {
  int file = -1;
  std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
  std::atomic<int> violations = 0;
  std::mutex mutex;
  std::map<std::string, Counts> counts;
};

/// Never destroyed: threads write until the end of the process.
Record& shared() {
  static auto& record = *new Record;
  return record;
}

void writeLine(const char* prefix, const char* format, va_list arguments) {
  char text[16384];
  std::vsnprintf(text, sizeof text, format, arguments);
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - shared().start;
  char line[17000];
  const int length = std::snprintf(line, sizeof line, "%.6f %s %s%s\n", seconds.count(),
                                   isMainThread() ? "main" : "other", prefix, text);
  if (shared().file >= 0) static_cast<void>(!::write(shared().file, line, static_cast<std::size_t>(length)));
}

void endRecord() {
  waitForSerialQueues();
  countOpenFiles(shared().file);
  {
    const std::scoped_lock lock(shared().mutex);
    for (const auto& [kind, counts] : shared().counts) {
      record("end: %s: %d made, %d live", kind.c_str(), counts.made, counts.live);
    }
  }
  record("end: %d violations", shared().violations.load());
  if (shared().violations > 0) ::_exit(brokeARule);
}

}  // namespace

bool isMainThread() { return ::syscall(SYS_gettid) == ::getpid(); }

void record(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  writeLine("", format, arguments);
  va_end(arguments);
}

void violation(const char* format, ...) {
  ++shared().violations;
  va_list arguments;
  va_start(arguments, format);
  writeLine("VIOLATION ", format, arguments);
  va_end(arguments);
  va_start(arguments, format);
  char text[1024];
  std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  std::fprintf(stderr, "VIOLATION %s\n", text);
}

void requireMainThread(const char* call) {
  if (!isMainThread()) violation("%s off the main thread", call);
}

std::string inQuotes(std::string_view text) {
  std::string line = "\"";
  for (const char unit : text) {
    if (unit == '\n') {
      line += "\\n";
    } else {
      if (unit == '"' || unit == '\\') line += '\\';
      line += unit;
    }
  }
  return line + '"';
}

void count(const char* kind, int change) {
  const std::scoped_lock lock(shared().mutex);
  Counts& counts = shared().counts[kind];
  if (change > 0) counts.made += change;
  counts.live += change;
}

void beginRecord() {
  const char* path = std::getenv("KEYVORA_RIG_RECORD");
  if (path != nullptr) shared().file = ::open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
  std::atexit(endRecord);
}

}  // namespace keyvora::rig
