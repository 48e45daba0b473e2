#include "mapping/mapping_store.h"

#include <utility>
#include <variant>

#include "log/log.h"
#include "mapping/decode.h"
#include "mapping/module.h"
#include "platform/fatal.h"
#include "platform/platform.h"
#include "platform/shared.h"

namespace keyvora {
namespace {

/// The delay between a change of the file and its reload.
constexpr platform::Seconds reloadDelay(0.2);

/// The document until the first successful load.
Mapping fallback() {
  Mapping mapping;
  mapping.version = 1;
  mapping.timeoutMilliseconds = Mapping::defaultTimeout.count();
  return mapping;
}

/// The path of the user's file. Creates its directory.
std::filesystem::path locate(platform::FileSystem& files) {
  const auto support = files.applicationSupportDirectory();
  if (!support) platform::trap();
  const auto directory = *support / "keyvora";
  files.createDirectories(directory);
  return directory / "mappings.json";
}

/// The document, or why it could not be loaded.
std::variant<Mapping, std::string> load(const std::filesystem::path& path) {
  const auto contents = platform::current().fileSystem.read(path);
  if (contents.error) return *contents.error;
  auto decoded = decode(contents.bytes);
  if (auto* error = std::get_if<DecodingError>(&decoded)) return std::move(error->description);
  return std::move(std::get<Mapping>(decoded));
}

}  // namespace

MappingStore& MappingStore::shared() {
  return platform::shared<MappingStore>([] { return std::make_unique<MappingStore>(); });
}

MappingStore::MappingStore()
    : url_(locate(platform::current().fileSystem)), self_(std::make_shared<MappingStore*>(this)) {
  auto& files = platform::current().fileSystem;
  if (!files.exists(url_)) {
    if (const auto document = module().resource("mappings", "json")) files.copy(*document, url_);
  }
  auto loaded = load(url_);
  auto* document = std::get_if<Mapping>(&loaded);
  mapping_ = document ? std::move(*document) : fallback();
  watch();
}

MappingStore::~MappingStore() = default;

void MappingStore::reload() {
  auto loaded = load(url_);
  if (auto* document = std::get_if<Mapping>(&loaded)) {
    mapping_ = std::move(*document);
    lastError_.reset();
    if (onReload) onReload(mapping_);
    Log::line("mappings reloaded, " + std::to_string(mapping_.sequences.size()) + " sequences");
  } else {
    lastError_ = std::move(std::get<std::string>(loaded));
    Log::line("mappings.json not loaded, keeping the last good one: " + *lastError_);
  }
}

void MappingStore::watch() {
  auto source = platform::current().fileSystem.watch(url_, [self = std::weak_ptr(self_)] {
    if (const auto store = self.lock()) (*store)->fileChanged();
  });
  if (source) source_ = std::move(source);
}

void MappingStore::fileChanged() {
  // Each notification gets its own reload and a new watch: the path may name another file by now.
  platform::current().mainLoop.after(reloadDelay, [self = std::weak_ptr(self_)] {
    const auto store = self.lock();
    if (!store) return;
    (*store)->reload();
    (*store)->source_.reset();
    (*store)->watch();
  });
}

}  // namespace keyvora
