#pragma once

#include <filesystem>

#include "appcast/fetcher.h"
#include "platform/main_loop.h"

namespace keyvora::x11 {

/// Fetches by HTTP and HTTPS, each document in its own process, so that the process that sees keys has no
/// network code and its libraries use memory only during a fetch. Certificates are verified with the
/// system's authorities, or those in the file named by the environment variable SSL_CERT_FILE. Follows a few
/// redirects, to HTTP and HTTPS only, and never from HTTPS to HTTP.
class FetchProcess final : public appcast::Fetcher {
 public:
  /// `program` is the path of keyvora-fetch. The loop is GLib's default main context; it must outlive the
  /// fetcher and its fetches.
  FetchProcess(platform::MainLoop& mainLoop, std::filesystem::path program);

  std::unique_ptr<appcast::Fetch> fetch(const std::string& address, const appcast::FetchLimits& limits,
                                        std::function<void(appcast::Fetched)> done) override;

 private:
  platform::MainLoop& mainLoop_;
  std::filesystem::path program_;
};

}  // namespace keyvora::x11
