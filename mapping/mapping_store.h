#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "mapping/mapping.h"
#include "platform/file_system.h"

namespace keyvora {

/// Owner of the live mapping document: finds or creates the user's file, loads it, watches it, and keeps
/// the last good document when a new one fails to load. Main thread only.
class MappingStore {
 public:
  /// The process's store, created on first access.
  static MappingStore& shared();

  /// Finds the file, or copies the default document there; loads it and starts watching it. A failure of
  /// this first load is not reported. Stops the process when the user has no Application Support directory.
  MappingStore();
  ~MappingStore();
  MappingStore(const MappingStore&) = delete;
  MappingStore& operator=(const MappingStore&) = delete;

  /// The current document, always a complete one. Changes only inside `reload`.
  [[nodiscard]] const Mapping& mapping() const { return mapping_; }

  /// Where `mappings.json` is.
  [[nodiscard]] const std::filesystem::path& url() const { return url_; }

  /// Why the last `reload` failed; absent after a successful one.
  [[nodiscard]] const std::optional<std::string>& lastError() const { return lastError_; }

  /// Called with the new document after every successful `reload`.
  std::function<void(const Mapping&)> onReload;

  /// Reads the file again. When it fails to load, the current document stays and `lastError` says why.
  void reload();

 private:
  void watch();
  void fileChanged();

  Mapping mapping_;
  std::filesystem::path url_;
  std::unique_ptr<platform::FileWatch> source_;
  std::optional<std::string> lastError_;
  /// Held weakly by delayed blocks, which do nothing once the store is destroyed.
  std::shared_ptr<MappingStore*> self_;
};

}  // namespace keyvora
