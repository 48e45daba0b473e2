#pragma once

#include <string>

/// The lines that tell of an operation's end. `name` is the label that the operation was called with.
namespace keyvora::outcome {

/// "name (kind)"
std::string done(const std::string& name, const std::string& kind);

/// "name FAILED: reason"
std::string failed(const std::string& name, const std::string& reason);

/// "name FAILED at place"
std::string failedAt(const std::string& name, const std::string& place);

/// The failure of an action that names a key or a character which the key-code table lacks.
std::string noKeyCode(const std::string& name, const std::string& key);

}  // namespace keyvora::outcome
