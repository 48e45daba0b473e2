#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace keyvora::appcast {

/// What a fetch may take. Beyond either limit it fails.
struct FetchLimits {
  std::chrono::milliseconds time{};
  std::size_t bytes = 0;
};

/// What a fetch brought: the content and the address it finally came from, or why it failed, for a person.
struct Fetched {
  std::string bytes;
  std::string address;
  std::optional<std::string> error;
};

/// A fetch under way. Main thread. Destroying it cancels it: no answer comes after that.
class Fetch {
 public:
  virtual ~Fetch() = default;
};

/// Brings documents from the web. Main thread.
class Fetcher {
 public:
  virtual ~Fetcher() = default;

  /// Starts to fetch an http or https address and returns at once; never null. `done` is called once, later,
  /// on the main thread; it may destroy the fetch.
  virtual std::unique_ptr<Fetch> fetch(const std::string& address, const FetchLimits& limits,
                                       std::function<void(Fetched)> done) = 0;
};

}  // namespace keyvora::appcast
