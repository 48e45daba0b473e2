#include "appcast/address.h"

#include <glib.h>

#include <memory>
#include <string_view>

#include "text/utf8.h"

namespace keyvora::appcast {
namespace {

struct UriUnref {
  void operator()(GUri* uri) const { g_uri_unref(uri); }
};
using Uri = std::unique_ptr<GUri, UriUnref>;

/// Escapes spaces and keeps existing escapes.
constexpr auto manner = static_cast<GUriFlags>(G_URI_FLAGS_PARSE_RELAXED | G_URI_FLAGS_ENCODED);

/// Null when the result is not an http or https address with a host. GLib ends a host at any ";" and takes
/// the rest for the path; it cannot write such an address again.
Uri parse(const std::string& reference, GUri* base) {
  Uri uri(g_uri_parse_relative(base, reference.c_str(), manner, nullptr));
  if (!uri) return nullptr;
  const std::string_view scheme = g_uri_get_scheme(uri.get());  // in lower case
  const char* host = g_uri_get_host(uri.get());
  const std::string_view path = g_uri_get_path(uri.get());
  const bool isOfTheWeb = (scheme == "http" || scheme == "https") && host != nullptr && *host != '\0' &&
                          (path.empty() || path.starts_with('/'));
  return isOfTheWeb ? std::move(uri) : nullptr;
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
  Uri from;
  if (!base.empty() && !(from = parse(base, nullptr))) return std::nullopt;
  const Uri uri = parse(reference, from.get());
  if (!uri) return std::nullopt;
  char* text = g_uri_to_string(uri.get());
  std::string address(text);
  g_free(text);
  if (!isText(address)) return std::nullopt;
  return address;
}

bool namesNoServer(const std::string& address) {
  const Uri uri = parse(address, nullptr);
  if (!uri) return false;
  const std::string_view host = g_uri_get_host(uri.get());
  constexpr std::string_view reserved = ".invalid";
  return host.size() > reserved.size() &&
         g_ascii_strcasecmp(host.data() + host.size() - reserved.size(), reserved.data()) == 0;
}

}  // namespace keyvora::appcast
