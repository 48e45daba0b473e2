#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "hosts/simulated/host.h"
#include "mapping/mapping_store.h"

namespace keyvora {

/// A simulated host, and a store that is created on first use.
struct MappingStoreTest : testing::Test {
  simulated::Host host;
  platform::Scope scope{host.platform()};

  const std::filesystem::path directory = "/Users/me/Library/Application Support/keyvora";
  const std::filesystem::path path = directory / "mappings.json";
  /// The simulated host's bundle with the default document.
  const std::filesystem::path bundle = "/Applications/keyvora.app/Contents/Resources/keyvora_keyvora.bundle";
  const std::filesystem::path defaultDocument = bundle / "mappings.json";

  /// A document whose sequences have these keys, separated by commas: one letter each.
  static std::string document(const std::string& letters) {
    std::string sequences;
    for (const char letter : letters) {
      if (!sequences.empty()) sequences += ", ";
      sequences += std::string(R"({"keys": ")") + letter +
                   R"(", "name": "n", "action": {"kind": "keytips", "keys": "a"}})";
    }
    return R"({"version": 1, "timeoutMilliseconds": 250, "tabs": {}, "sequences": [)" + sequences + "]}";
  }

  static MappingStore& store() { return MappingStore::shared(); }

  /// The keys of the current document, joined.
  static std::string keys() {
    std::string all;
    for (const auto& sequence : store().mapping().sequences) all += sequence.keys;
    return all;
  }

  [[nodiscard]] std::vector<std::string> logged() const { return host.trace.logged(); }
};

}  // namespace keyvora
