#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace keyvora::appcast {

/// The limits of a fetch. It fails when it reaches either.
struct FetchLimits {
  std::chrono::milliseconds time{};
  std::size_t bytes = 0;
};

/// The result of a fetch: the content and the address after redirects, or the reason of its failure for the
/// user.
struct Fetched {
  std::string bytes;
  std::string address;
  std::optional<std::string> error;
};

/// A fetch in progress. Main thread. Destroying it cancels it: `done` is not called after that.
class Fetch {
 public:
  virtual ~Fetch() = default;
};

/// Fetches documents over HTTP. Main thread.
class Fetcher {
 public:
  virtual ~Fetcher() = default;

  /// Starts to fetch an http or https address and returns at once; never null. `done` is called once, later,
  /// on the main thread; it may destroy the fetch.
  virtual std::unique_ptr<Fetch> fetch(const std::string& address, const FetchLimits& limits,
                                       std::function<void(Fetched)> done) = 0;
};

}  // namespace keyvora::appcast
