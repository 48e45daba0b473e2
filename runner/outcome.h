#pragma once

#include <string>

/// The log lines that report how an operation ended. `name` is the label that the operation was called
/// with.
namespace keyvora::outcome {

/// "name (kind)"
std::string done(const std::string& name, const std::string& kind);

/// "name FAILED: reason"
std::string failed(const std::string& name, const std::string& reason);

/// "name FAILED at place"
std::string failedAt(const std::string& name, const std::string& place);

/// The failure of an action that names a key or character which is not in the key-code table.
std::string noKeyCode(const std::string& name, const std::string& key);

}  // namespace keyvora::outcome
