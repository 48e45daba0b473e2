#include "platform/appcast/address.h"

#include <curl/curl.h>

#include <memory>

namespace keyvora::appcast {
namespace {

using CurlText = std::unique_ptr<char, decltype(&curl_free)>;

}  // namespace

std::optional<std::string> webAddress(const std::string& reference, const std::string& base) {
  const std::unique_ptr<CURLU, decltype(&curl_url_cleanup)> url(curl_url(), curl_url_cleanup);
  constexpr unsigned flags = CURLU_URLENCODE;
  if (!base.empty() && curl_url_set(url.get(), CURLUPART_URL, base.c_str(), flags) != CURLUE_OK)
    return std::nullopt;
  if (curl_url_set(url.get(), CURLUPART_URL, reference.c_str(), flags) != CURLUE_OK) return std::nullopt;
  const auto part = [&url](CURLUPart which) {
    char* text = nullptr;
    curl_url_get(url.get(), which, &text, 0);
    const CurlText owner(text, curl_free);
    return std::string(text != nullptr ? text : "");
  };
  const std::string scheme = part(CURLUPART_SCHEME);
  if (scheme != "http" && scheme != "https") return std::nullopt;
  return part(CURLUPART_URL);
}

}  // namespace keyvora::appcast
