#include "hosts/x11/updates/fetch/answer.h"

#include <algorithm>

namespace keyvora::x11 {
namespace {

/// One line: parts of both texts come from the server.
std::string asLine(std::string text) {
  std::ranges::replace_if(
      text, [](char c) { return c >= 0 && c < ' '; }, ' ');
  return text + "\n";
}

/// Removes and returns the first line; none when it has no end.
std::optional<std::string> takeLine(std::string_view& text) {
  const auto end = text.find('\n');
  if (end == std::string_view::npos) return std::nullopt;
  std::string line(text.substr(0, end));
  text.remove_prefix(end + 1);
  return line;
}

}  // namespace

std::string encodeAnswer(const appcast::Fetched& fetched) {
  return asLine(fetched.address) + asLine(fetched.error.value_or("")) + fetched.bytes;
}

std::optional<appcast::Fetched> decodeAnswer(std::string_view text) {
  auto address = takeLine(text);
  auto error = takeLine(text);
  if (!address || !error) return std::nullopt;
  appcast::Fetched fetched{std::string(text), std::move(*address), std::nullopt};
  if (!error->empty()) fetched.error = std::move(*error);
  return fetched;
}

}  // namespace keyvora::x11
