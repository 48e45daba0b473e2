#pragma once

#include "appcast/fetcher.h"
#include "platform/main_loop.h"

namespace keyvora::x11 {

/// Fetches by HTTP and HTTPS, each document on a thread of its own. Certificates are verified with the
/// system's authorities, or those in the file named by the environment variable SSL_CERT_FILE. Follows a
/// few redirects, to HTTP and HTTPS only, and never from HTTPS to HTTP.
class CurlFetcher final : public appcast::Fetcher {
 public:
  /// The loop must outlive the fetcher and its fetches.
  explicit CurlFetcher(platform::MainLoop& mainLoop);

  std::unique_ptr<appcast::Fetch> fetch(const std::string& address, const appcast::FetchLimits& limits,
                                        std::function<void(appcast::Fetched)> done) override;

 private:
  platform::MainLoop& mainLoop_;
};

}  // namespace keyvora::x11
