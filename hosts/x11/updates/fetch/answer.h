#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "appcast/fetcher.h"

namespace keyvora::x11 {

/// The standard output of keyvora-fetch: a line with the document's final address, a line with the error or
/// an empty line, and the document. Any thread.
std::string encodeAnswer(const appcast::Fetched& fetched);

/// Reads that output; none when it is incomplete. Any thread.
std::optional<appcast::Fetched> decodeAnswer(std::string_view text);

}  // namespace keyvora::x11
