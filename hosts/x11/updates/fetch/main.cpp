// `keyvora-fetch ADDRESS BYTES MILLISECONDS` fetches one document. keyvora starts it and reads the answer
// from its standard output; it ends early when its output is closed.

#include <poll.h>
#include <unistd.h>

#include <charconv>
#include <cstdio>
#include <optional>
#include <string_view>

#include "hosts/x11/updates/fetch/answer.h"
#include "hosts/x11/updates/fetch/transfer.h"

namespace {

using namespace keyvora;

std::optional<std::size_t> number(std::string_view text) {
  std::size_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
  return value;
}

bool isAwaited() {
  pollfd output{STDOUT_FILENO, 0, 0};
  return poll(&output, 1, 0) == 0 || (output.revents & POLLERR) == 0;
}

}  // namespace

int main(int argc, char** argv) {
  const auto bytes = argc == 4 ? number(argv[2]) : std::nullopt;
  const auto milliseconds = argc == 4 ? number(argv[3]) : std::nullopt;
  if (!bytes || !milliseconds) {
    std::fputs("keyvora-fetch: This program is a part of keyvora, which starts it.\n", stderr);
    return 2;
  }
  const appcast::FetchLimits limits{std::chrono::milliseconds(*milliseconds), *bytes};
  const auto answer = x11::encodeAnswer(x11::transfer(argv[1], limits, isAwaited));
  const bool isWritten = std::fwrite(answer.data(), 1, answer.size(), stdout) == answer.size();
  return isWritten && std::fflush(stdout) == 0 ? 0 : 1;
}
