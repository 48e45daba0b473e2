#include <variant>

#include "tools/check.h"
#include "tools/commands.h"
#include "tools/embedded.h"
#include "tools/explain.h"
#include "tools/file.h"
#include "tools/letters.h"
#include "tools/sheet.h"
#include "tools/wording.h"

/// The commands that need a document that loads.
namespace keyvora::tools {
namespace {

/// The mapping of a document, or none after saying why.
std::optional<Mapping> load(const std::optional<std::string>& file, const Streams& streams) {
  const auto read = readDocument(file);
  if (const auto* unreadable = std::get_if<Unreadable>(&read)) {
    streams.error << complaint(unreadable->message);
    return std::nullopt;
  }
  const auto& source = std::get<Source>(read);
  const Document document(source.bytes);
  if (document.isSound()) return document.mapping();
  streams.error << asText(errorsIn(document), source.name);
  return std::nullopt;
}

}  // namespace

int explainCommand(const Options& options, const Streams& streams) {
  const auto letters = Sequence{*options.operand(0), {}, {}}.letters();
  if (const auto untypable = firstUntypable(letters)) {
    streams.error << complaint("no key produces " + inQuotes(*untypable) +
                               "; only letters and digits can be typed");
    return exit_status::failed;
  }
  const auto mapping = load(options.operand(1), streams);
  if (!mapping) return exit_status::failed;
  const auto explanation = explain(letters, *mapping);
  streams.out << explanation.text;
  return explanation.fires ? exit_status::done : exit_status::no;
}

int listCommand(const Options& options, const Streams& streams) {
  const auto mapping = load(options.operand(0), streams);
  if (!mapping) return exit_status::failed;
  auto sheet = sheetOf(*mapping);
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
  if (options.has("--html") && options.has("--markdown")) {
    streams.error << complaint("--html and --markdown exclude each other");
    return exit_status::failed;
  }
  const auto mapping = load(options.operand(0), streams);
  if (!mapping) return exit_status::failed;
  const auto sheet = sheetOf(*mapping);
  streams.out << (options.has("--markdown") ? asMarkdown(sheet) : asHtml(sheet));
  return exit_status::done;
}

int schemaCommand(const Options&, const Streams& streams) {
  streams.out << embedded::schema;
  return exit_status::done;
}

}  // namespace keyvora::tools
