#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <system_error>
#include <variant>

#include "tools/check.h"
#include "tools/commands.h"
#include "tools/document.h"
#include "tools/file.h"
#include "tools/shipped.h"
#include "tools/update.h"
#include "tools/wording.h"

/// The commands that compare the user's document with the shipped one, and change it.
namespace keyvora::tools {
namespace {

namespace fs = std::filesystem;

/// An unused name beside the file: its name with this at the end, and a number if there must be one.
fs::path unusedBeside(const fs::path& file, const std::string& ending) {
  for (int number = 1;; ++number) {
    auto name = file;
    name += ending + (number == 1 ? "" : std::to_string(number));
    std::error_code ignored;
    if (!fs::exists(fs::symlink_status(name, ignored))) return name;
  }
}

/// The file that a name leads to, through links; it need not exist.
fs::path targetOf(const fs::path& named, std::error_code& failed) {
  constexpr int most = 40;  // Linux's limit
  auto file = named;
  for (int links = 0; links < most; ++links) {
    if (!fs::is_symlink(fs::symlink_status(file, failed))) {
      failed.clear();  // the next call on the file reports other errors
      return file;
    }
    const auto next = fs::read_symlink(file, failed);
    if (failed) return file;
    file = file.parent_path() / next;
  }
  failed = std::make_error_code(std::errc::too_many_symbolic_link_levels);
  return file;
}

/// Replaces a file's content in one step, keeping its permissions and a backup beside it. Returns an error,
/// or none. For a link, replaces the file that it leads to.
std::optional<std::string> replaceFile(const fs::path& named, const std::string& bytes,
                                       const Streams& streams) {
  std::error_code failed;
  const auto file = targetOf(named, failed);
  if (failed) return named.string() + ": " + failed.message();
  const bool exists = fs::exists(file, failed);
  if (exists) {
    const auto backup = unusedBeside(named, ".backup");
    fs::copy_file(file, backup, failed);
    if (failed) return backup.string() + ": " + failed.message();
    streams.out << "The document as it was: " << backup.string() << "\n";
  } else {
    fs::create_directories(file.parent_path(), failed);
    if (failed) return file.parent_path().string() + ": " + failed.message();
  }
  const auto whole = unusedBeside(file, ".new");
  std::ofstream stream(whole, std::ios::binary | std::ios::trunc);
  stream << bytes;
  stream.close();
  std::error_code ignored;
  if (!stream) {
    fs::remove(whole, ignored);
    return whole.string() + ": could not be written";
  }
  if (exists) fs::permissions(whole, fs::status(file, ignored).permissions(), ignored);
  fs::rename(whole, file, failed);
  if (!failed) return std::nullopt;
  fs::remove(whole, ignored);
  return file.string() + ": " + failed.message();
}

int fail(const std::string& why, const Streams& streams) {
  streams.error << complaint(why);
  return exit_status::failed;
}

/// The user's document, and the differences of the shipped one.
struct Comparison {
  std::string file;
  std::string bytes;
  std::string_view shipped;
  Update update;
};

std::variant<Comparison, std::string> compare(const Options& options, const Streams& streams) {
  auto file = options.operand(0);
  if (!file) file = ownDocumentThatExists();
  if (!file) return "you have no document yet; keyvora makes one when it starts";
  const auto read = readFile(*file);
  if (const auto* unreadable = std::get_if<Unreadable>(&read)) return unreadable->message;
  const auto& source = std::get<Source>(read);
  const Document document(source.bytes);
  if (!document.isSound()) {
    streams.error << asText(errorsIn(document), source.name);
    return source.name + ": does not load; mend it first";
  }
  const auto name = options.setting("--from");
  const auto* shipped = name ? shippedDocument(*name) : originOf(document);
  if (shipped == nullptr) {
    return name ? "no document called " + *name + "; there are calc, gnumeric and excel"
                : source.name +
                      ": nothing in it came with keyvora; say with which document to compare it: "
                      "--from calc, gnumeric or excel";
  }
  auto made = update(document, source.bytes, *shipped);
  if (!made) return source.name + ": is not UTF-8; save it as UTF-8 first";
  if (!Document(made->bytes).isSound()) return source.name + ": cannot be changed by parts";
  return Comparison{*file, source.bytes, shipped->name, std::move(*made)};
}

std::string_view nameOf(Change::Kind kind) {
  switch (kind) {
    case Change::Kind::added:
      return "new     ";
    case Change::Kind::mended:
      return "mended  ";
    case Change::Kind::kept:
      return "yours   ";
  }
  return "";
}

void tell(const Comparison& comparison, std::ostream& out) {
  for (const auto& change : comparison.update.changes) {
    out << nameOf(change.kind) << change.letters << "  " << change.name << "\n";
  }
  if (!comparison.update.bringsAnything()) {
    out << "The document has all that is new and mended in keyvora's for " << comparison.shipped << ".\n";
  }
}

}  // namespace

int useCommand(const Options& options, const Streams& streams) {
  const auto name = *options.operand(0);
  const auto* shipped = shippedDocument(name);
  if (shipped == nullptr) {
    return fail("no document called " + name + "; there are calc, gnumeric and excel", streams);
  }
  const auto file = userDocument();
  if (!file) return fail("you have no home directory", streams);
  std::error_code ignored;
  if (std::filesystem::exists(*file, ignored)) {
    const auto read = readFile(file->string());
    const auto* source = std::get_if<Source>(&read);
    if (source != nullptr && source->bytes == shipped->bytes) {
      streams.out << file->string() << " is the document for " << name << " already.\n";
      return exit_status::done;
    }
  }
  if (const auto why = replaceFile(*file, std::string(shipped->bytes), streams)) return fail(*why, streams);
  streams.out << file->string() << " is the document for " << name << " now.\n";
  return exit_status::done;
}

int diffCommand(const Options& options, const Streams& streams) {
  const auto compared = compare(options, streams);
  if (const auto* why = std::get_if<std::string>(&compared)) return fail(*why, streams);
  const auto& comparison = std::get<Comparison>(compared);
  tell(comparison, streams.out);
  return comparison.update.bringsAnything() ? exit_status::no : exit_status::done;
}

int updateCommand(const Options& options, const Streams& streams) {
  if (options.operand(0) == "-") return fail("update needs a file", streams);
  const auto compared = compare(options, streams);
  if (const auto* why = std::get_if<std::string>(&compared)) return fail(*why, streams);
  const auto& comparison = std::get<Comparison>(compared);
  tell(comparison, streams.out);
  if (!comparison.update.bringsAnything()) return exit_status::done;
  const auto why = replaceFile(comparison.file, comparison.update.bytes, streams);
  return why ? fail(*why, streams) : exit_status::done;
}

}  // namespace keyvora::tools
