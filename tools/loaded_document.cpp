#include "tools/loaded_document.h"

#include "mapping/module.h"
#include "tools/check.h"
#include "tools/commands.h"
#include "tools/embedded.h"

namespace keyvora::tools {
namespace {

/// The document for this machine in the host's resources; none without a host, or if its resources are not
/// installed.
std::optional<std::string> defaultDocumentHere(const HostOnce& hostOnce) {
  const auto* host = hostOnce.get();
  if (host == nullptr) return std::nullopt;
  const auto bundle = openModule(host->platform().bundles);
  if (!bundle) return std::nullopt;
  const auto file = bundle->resource("mappings", "json");
  if (!file) return std::nullopt;
  return file->string();
}

}  // namespace

std::variant<Source, Unreadable> readDocument(const std::optional<std::string>& file,
                                              const Streams& streams) {
  if (file) return readFile(*file);
  if (const auto own = ownDocumentThatExists()) return readFile(*own);
  const auto here = defaultDocumentHere(streams.host);
  streams.error << complaint("you have no document yet; this is the one that keyvora starts with" +
                             (here ? ": " + *here : ", for Excel"));
  if (here) return readFile(*here);
  return Source{"<default document>", std::string(embedded::defaultDocument)};
}

std::optional<LoadedDocument> loadDocument(const std::optional<std::string>& file, const Streams& streams) {
  auto read = readDocument(file, streams);
  if (const auto* unreadable = std::get_if<Unreadable>(&read)) {
    streams.error << complaint(unreadable->message);
    return std::nullopt;
  }
  auto& source = std::get<Source>(read);
  auto document = std::make_unique<const Document>(std::move(source.bytes));
  if (document->isSound()) return LoadedDocument{std::move(source.name), std::move(document)};
  streams.error << asText(errorsIn(*document), source.name);
  return std::nullopt;
}

}  // namespace keyvora::tools
