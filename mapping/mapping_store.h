#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "mapping/mapping.h"
#include "platform/file_system.h"

namespace keyvora {

/// Owner of the live mapping document: finds or creates the user's file, loads it, watches it, and keeps the
/// last good document when a new one fails to load. Main thread only.
class MappingStore {
 public:
  /// The process's store, initialised on first access.
  static MappingStore& shared();

  /// Finds the file, copies the default document there when it is missing, loads it without a word and starts
  /// watching. Stops the process when the user has no Application Support directory.
  MappingStore();
  ~MappingStore();
  MappingStore(const MappingStore&) = delete;
  MappingStore& operator=(const MappingStore&) = delete;

  /// The current document; always a whole one. Changes only inside `reload`.
  [[nodiscard]] const Mapping& mapping() const { return mapping_; }

  /// Where `mappings.json` is.
  [[nodiscard]] const std::filesystem::path& url() const { return url_; }

  /// Why the last `reload` failed; absent after a successful one.
  [[nodiscard]] const std::optional<std::string>& lastError() const { return lastError_; }

  /// Called with the new document after every successful `reload`.
  std::function<void(const Mapping&)> onReload;

  /// Reads the file again. A document that fails to load leaves the current one in place. Never fails
  /// outward.
  void reload();

 private:
  void watch();
  void fileChanged();

  Mapping mapping_;
  std::filesystem::path url_;
  std::unique_ptr<platform::FileWatch> source_;
  std::optional<std::string> lastError_;
  /// Delayed blocks hold it weakly: they do nothing once the store is gone.
  std::shared_ptr<MappingStore*> self_;
};

}  // namespace keyvora
