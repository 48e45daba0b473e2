// usage: bench_delivery DEVICE KEY TIMES [armed]
// Presses KEY that many times on a keyboard of the display, each time when the last press has arrived, and
// prints the time from injection to delivery in a window, in microseconds, one per line. With `armed`,
// first taps Option, and requires that the sequence is still open at the end: KEY must be a key that does
// not end it (Shift).

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <memory>
#include <stdexcept>
#include <string_view>
#include <thread>
#include <vector>

#include "bench/delivery/window.h"
#include "tests/desktop/typist/keyboard.h"
#include "tests/desktop/typist/physical_keys.h"

namespace keyvora::bench {
namespace {

using namespace std::chrono_literals;
using Connection = std::unique_ptr<Display, decltype(&XCloseDisplay)>;

Connection connect() {
  Connection display(XOpenDisplay(nullptr), &XCloseDisplay);
  if (!display) throw std::runtime_error("no display");
  return display;
}

class Bench {
 public:
  explicit Bench(const char* device) : keyboard_(typing_.get(), device), keys_(typing_.get()) {}

  void tap(const char* key) {
    press(keys_.code(key));
    release(keys_.code(key));
  }

  /// The time from injection to delivery, in microseconds.
  double time(const char* key) {
    const auto code = keys_.code(key);
    const auto start = TargetWindow::Clock::now();
    press(code);
    const auto arrived = window_.waitFor(code, 5s);
    release(code);
    if (!arrived) throw std::runtime_error("a key was lost");
    return std::chrono::duration<double, std::micro>(*arrived - start).count();
  }

  bool arrives(const char* key) {
    tap(key);
    return window_.waitFor(keys_.code(key), 500ms).has_value();
  }

 private:
  void press(KeyCode code) {
    keyboard_.key(code, true);
    XFlush(typing_.get());
  }
  void release(KeyCode code) {
    keyboard_.key(code, false);
    keyboard_.flush();
  }

  Connection typing_ = connect();
  Connection reading_ = connect();
  typist::Keyboard keyboard_;
  typist::PhysicalKeys keys_;
  TargetWindow window_{reading_.get()};
};

void run(const char* device, const char* key, std::size_t times, bool armed) {
  Bench bench(device);
  // Programs that follow the windows must know this one before the measurement starts.
  std::this_thread::sleep_for(500ms);
  constexpr int warmUp = 100;
  for (int i = 0; i < warmUp; ++i) bench.time(key);
  if (armed) {
    bench.tap("Option");
    std::this_thread::sleep_for(500ms);
  }
  std::vector<double> taken;
  for (std::size_t i = 0; i < times; ++i) taken.push_back(bench.time(key));
  // Escape is swallowed if a sequence is open, and reaches the window otherwise.
  if (bench.arrives("Escape") == armed)
    throw std::runtime_error(armed ? "the sequence ended early" : "Escape was lost");
  for (const double each : taken) std::printf("%.1f\n", each);
}

}  // namespace
}  // namespace keyvora::bench

int main(int argc, char** argv) try {
  if (argc < 4) throw std::runtime_error("usage: bench_delivery DEVICE KEY TIMES [armed]");
  keyvora::bench::run(argv[1], argv[2], std::strtoul(argv[3], nullptr, 10),
                      argc > 4 && std::string_view(argv[4]) == "armed");
} catch (const std::exception& error) {
  std::fprintf(stderr, "bench_delivery: %s\n", error.what());
  return EXIT_FAILURE;
}
