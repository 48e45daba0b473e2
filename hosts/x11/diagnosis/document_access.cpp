#include "hosts/x11/diagnosis/document_access.h"

#include <sys/stat.h>
#include <unistd.h>

#include <string>

namespace keyvora::x11 {
namespace {

/// Why another user may change the file, as the end of a sentence; empty when no other user may.
std::string strangers(const std::filesystem::path& path) {
  struct stat found {};
  if (stat(path.c_str(), &found) != 0) return {};
  if ((found.st_mode & S_IWOTH) != 0) return "is writable by all";
  if (found.st_uid != geteuid() && found.st_uid != 0) return "is another user's";
  return {};
}

platform::Finding finding(const std::string& what, const std::string& why,
                          const std::filesystem::path& path) {
  return {.name = what + " " + why,
          .sentence = "Whoever can change it can run programs as you: " + path.string() + ".",
          .remedy = "Make it yours, with nobody else writing to it: chown \"$USER\" and chmod go-w.",
          .stopsSequences = false};
}

}  // namespace

std::optional<platform::Finding> foreignDocument(const std::filesystem::path& document) {
  if (const auto why = strangers(document); !why.empty()) return finding("mappings.json", why, document);
  const auto folder = document.parent_path();
  if (const auto why = strangers(folder); !why.empty()) {
    return finding("the folder of mappings.json", why, folder);
  }
  return std::nullopt;
}

}  // namespace keyvora::x11
