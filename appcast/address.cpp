#include "appcast/address.h"
#include "text/utf8.h"

#include <curl/curl.h>

#include <memory>
#include <string_view>

namespace keyvora::appcast {
namespace {

using CurlText = std::unique_ptr<char, decltype(&curl_free)>;
using Url = std::unique_ptr<CURLU, decltype(&curl_url_cleanup)>;

constexpr unsigned escapeSpaces = CURLU_URLENCODE;

Url makeUrl() {
  return {curl_url(), curl_url_cleanup};
}

/// Empty when the address has no such part.
std::string partOf(const Url& url, CURLUPart which) {
  char* text = nullptr;
  curl_url_get(url.get(), which, &text, 0);
  const CurlText owner(text, curl_free);
  return text != nullptr ? text : "";
}

/// Whether this is UTF-8 without control characters. Paths are escaped; a host is accepted as it is
/// written.
bool isText(std::string_view address) {
  while (!address.empty()) {
    const auto [value, length, wellFormed] = text::firstCodePoint(address);
    const bool isControl = value < U' ' || (value >= U'\x7F' && value < U'\u00A0');
    if (!wellFormed || isControl) return false;
    address.remove_prefix(length);
  }
  return true;
}

}  // namespace

std::optional<std::string> webAddress(const std::string& reference, const std::string& base) {
  const Url url = makeUrl();
  if (!base.empty() && curl_url_set(url.get(), CURLUPART_URL, base.c_str(), escapeSpaces) != CURLUE_OK)
    return std::nullopt;
  if (curl_url_set(url.get(), CURLUPART_URL, reference.c_str(), escapeSpaces) != CURLUE_OK)
    return std::nullopt;
  const std::string scheme = partOf(url, CURLUPART_SCHEME);
  if (scheme != "http" && scheme != "https") return std::nullopt;
  auto address = partOf(url, CURLUPART_URL);
  if (!isText(address)) return std::nullopt;
  return address;
}

bool namesNoServer(const std::string& address) {
  const Url url = makeUrl();
  if (curl_url_set(url.get(), CURLUPART_URL, address.c_str(), escapeSpaces) != CURLUE_OK) return false;
  const std::string host = partOf(url, CURLUPART_HOST);
  constexpr std::string_view reserved = ".invalid";
  return host.size() > reserved.size() &&
         curl_strequal(host.c_str() + host.size() - reserved.size(), reserved.data()) != 0;
}

}  // namespace keyvora::appcast
