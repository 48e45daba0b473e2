#include <spawn.h>
#include <sys/wait.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>

#include "tools/commands.h"
#include "tools/embedded.h"
#include "tools/explain.h"
#include "tools/file.h"
#include "tools/letters.h"
#include "tools/loaded_document.h"
#include "tools/on_path.h"
#include "tools/sheet.h"
#include "tools/wording.h"

// Not declared by the headers of a Mac.
extern char** environ;  // NOLINT(readability-redundant-declaration)

/// The commands that need a document that loads.
namespace keyvora::tools {
namespace {

/// Opens a page in the user's browser. The file stays in its own temporary folder, because the browser
/// reads it later.
int open(const std::string& page, const Streams& streams) {
  const auto* opener = onPath("xdg-open") ? "xdg-open" : onPath("open") ? "open" : nullptr;
  if (opener == nullptr) {
    streams.error << complaint("there is no program that opens files (xdg-open, or open on a Mac)");
    return exit_status::failed;
  }
  const auto folder = makeTemporaryFolder("keyvora-cheatsheet");
  if (!folder) {
    streams.error << complaint(
        "there is no folder for temporary files; set TMPDIR to one that can be written to");
    return exit_status::failed;
  }
  const auto file = (*folder / "keyvora.html").string();
  std::ofstream stream(file, std::ios::binary);
  stream << page;
  stream.close();
  if (!stream) {
    std::error_code ignored;
    std::filesystem::remove_all(*folder, ignored);
    streams.error << complaint(file + ": could not be written");
    return exit_status::failed;
  }
  const std::array<const char*, 3> words{opener, file.c_str(), nullptr};
  pid_t process = 0;
  int status = -1;
  if (posix_spawnp(&process, opener, nullptr, nullptr, const_cast<char**>(words.data()), environ) != 0 ||
      waitpid(process, &status, 0) != process || status != 0) {
    streams.error << complaint(std::string(opener) + " could not open " + file);
    return exit_status::failed;
  }
  streams.out << file << "\n";
  return exit_status::done;
}

}  // namespace

int explainCommand(const Options& options, const Streams& streams) {
  const auto letters = Sequence{*options.operand(0), {}, {}}.letters();
  if (const auto untypable = firstUntypable(letters)) {
    streams.error << complaint("no key produces " + inQuotes(*untypable) +
                               "; only letters and digits can be typed");
    return exit_status::failed;
  }
  const auto loaded = loadDocument(options.operand(1), streams);
  if (!loaded) return exit_status::failed;
  const auto explanation = explain(letters, loaded->document->mapping());
  streams.out << explanation.text;
  return explanation.fires ? exit_status::done : exit_status::no;
}

int listCommand(const Options& options, const Streams& streams) {
  const auto loaded = loadDocument(options.operand(0), streams);
  if (!loaded) return exit_status::failed;
  auto sheet = sheetOf(loaded->document->mapping());
  if (const auto tab = options.setting("--tab")) {
    keepStartingWith(sheet, Sequence{*tab, {}, {}}.letters());
    if (sheet.empty()) {
      streams.error << complaint("no sequence starts with " + inQuotes(*tab));
      return exit_status::no;
    }
  }
  streams.out << asTable(sheet);
  return exit_status::done;
}

int cheatsheetCommand(const Options& options, const Streams& streams) {
  for (const auto* other : {"--html", "--open"}) {
    if (!options.has(other) || !options.has("--markdown")) continue;
    streams.error << complaint(std::string(other) + " and --markdown exclude each other");
    return exit_status::failed;
  }
  const auto loaded = loadDocument(options.operand(0), streams);
  if (!loaded) return exit_status::failed;
  const auto sheet = sheetOf(loaded->document->mapping());
  if (options.has("--open")) return open(asHtml(sheet), streams);
  streams.out << (options.has("--markdown") ? asMarkdown(sheet) : asHtml(sheet));
  return exit_status::done;
}

int schemaCommand(const Options&, const Streams& streams) {
  streams.out << embedded::schema;
  return exit_status::done;
}

}  // namespace keyvora::tools
