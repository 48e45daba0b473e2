// usage: bench_decode_now_and_then FILE TIMES
// Decodes a document so many times, a quarter of a second apart as saves are, and prints the processor time
// of each in seconds, a line each: its share of a reload.

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <variant>

#include "mapping/decode.h"

namespace {

double processorTime() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return double(now.tv_sec) + double(now.tv_nsec) / 1e9;
}

}  // namespace

int main(int argc, char** argv) {
  std::ifstream file(argc == 3 ? argv[1] : "", std::ios::binary);
  const std::string bytes(std::istreambuf_iterator<char>(file), {});
  if (bytes.empty()) {
    std::fputs("usage: bench_decode_now_and_then FILE TIMES\n", stderr);
    return EXIT_FAILURE;
  }
  for (int times = std::atoi(argv[2]); times > 0; --times) {
    std::this_thread::sleep_for(std::chrono::milliseconds(250));
    const double before = processorTime();
    const auto decoded = keyvora::decode(bytes);
    const double after = processorTime();
    if (!std::holds_alternative<keyvora::Mapping>(decoded)) return EXIT_FAILURE;
    std::printf("%.9f\n", after - before);
  }
}
