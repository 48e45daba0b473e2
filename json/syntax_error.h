#pragma once

#include <rapidjson/error/error.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace keyvora::json {

/// What a person should know about a parser's error at an offset of the text: one line, without the position.
std::string syntaxErrorReason(rapidjson::ParseErrorCode code, std::string_view text, std::size_t offset);

}  // namespace keyvora::json
