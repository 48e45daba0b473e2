#pragma once

#include <optional>
#include <string>

namespace keyvora::appcast {

/// Whether this is an absolute http or https address.
bool isWebAddress(const std::string& address);

/// The absolute address that `reference` names from `base`, spaces escaped; none when that is not http or
/// https, or forms no address. Any thread.
std::optional<std::string> webAddress(const std::string& reference, const std::string& base);

}  // namespace keyvora::appcast
