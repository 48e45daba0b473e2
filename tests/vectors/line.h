#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "tests/vectors/vector_kind.h"

/// Reading the fields of a line.
namespace keyvora::vectors {

/// A line lacks a field, or a field has the wrong type.
struct MalformedLine : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// The value of a required field.
const Line& field(const Line& line, const char* name);

/// A value that must be a string, a list of strings, a boolean, an integer.
std::string asString(const Line& value);
std::vector<std::string> asStrings(const Line& value);
bool asBool(const Line& value);
std::int64_t asInteger(const Line& value);

/// The same for a field.
std::string stringField(const Line& line, const char* name);
std::vector<std::string> stringsField(const Line& line, const char* name);
bool boolField(const Line& line, const char* name);

/// A value as compact JSON, for messages.
std::string shown(const Line& value);
std::string shown(const std::vector<std::string>& values);

/// Decodes base64.
std::string fromBase64(std::string_view text);

}  // namespace keyvora::vectors
