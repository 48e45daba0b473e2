#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>
#include <variant>

#include "tools/commands.h"
#include "tools/file.h"
#include "tools/habits.h"
#include "tools/loaded_document.h"

namespace keyvora::tools {
namespace {

/// How much of the end of a log is read: more than years of use.
constexpr std::streamoff mostRead = std::streamoff{16} * 1024 * 1024;

std::variant<std::string, Unreadable> endOf(const std::filesystem::path& file) {
  std::error_code ignored;
  if (!std::filesystem::is_regular_file(file, ignored))
    return Unreadable{file.string() + ": there is no such log"};
  std::ifstream stream(file, std::ios::binary | std::ios::ate);
  if (!stream) return Unreadable{file.string() + ": cannot be read"};
  const std::streamoff size = stream.tellg();
  const auto read = std::min(size, mostRead);
  std::string bytes(static_cast<std::size_t>(read), '\0');
  stream.seekg(size - read);
  stream.read(bytes.data(), read);
  bytes.resize(static_cast<std::size_t>(stream.gcount()));
  if (read == size) return bytes;
  // The first line may be incomplete.
  const auto end = bytes.find('\n');
  return end == std::string::npos ? std::string() : bytes.substr(end + 1);
}

}  // namespace

int habitsCommand(const Options& options, const Streams& streams) {
  const auto loaded = loadDocument(options.operand(0), streams);
  if (!loaded) return exit_status::failed;
  const auto own = userLog();
  const auto name = options.setting("--log");
  if (!name && !own) {
    streams.error << complaint("you have no home directory; name a log with --log");
    return exit_status::failed;
  }
  const auto log = endOf(name ? std::filesystem::path(*name) : *own);
  if (const auto* unreadable = std::get_if<Unreadable>(&log)) {
    streams.error << complaint(unreadable->message);
    return exit_status::failed;
  }
  streams.out << asText(habitsIn(std::get<std::string>(log)), *loaded->document);
  return exit_status::done;
}

}  // namespace keyvora::tools
