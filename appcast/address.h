#pragma once

#include <optional>
#include <string>

namespace keyvora::appcast {

/// The absolute address that `reference` names from `base`, spaces escaped and the host in ASCII; none when
/// that is not http or https, or forms no address. Any thread.
std::optional<std::string> webAddress(const std::string& reference, const std::string& base);

/// Whether the address is under ".invalid", a domain in which by convention no server exists: the feed of a
/// build that was given none. Any thread.
bool namesNoServer(const std::string& address);

}  // namespace keyvora::appcast
