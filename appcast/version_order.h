#pragma once

#include <string_view>

namespace keyvora::appcast {

/// Compares versions as Sparkle's standard comparator does: negative when `a` is older than `b`, zero when
/// they count as the same, positive when `a` is newer. Characters outside ASCII count as letters. Any thread.
int compareVersions(std::string_view a, std::string_view b);

}  // namespace keyvora::appcast
