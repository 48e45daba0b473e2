#pragma once

#include <array>
#include <string_view>

/// The names that the mapping document uses: the keys of its three kinds of object, in the order in which
/// they are read, and the kinds of action. Exact, case included.
namespace keyvora::key {

inline constexpr std::string_view version = "version";
inline constexpr std::string_view notes = "notes";
inline constexpr std::string_view timeoutMilliseconds = "timeoutMilliseconds";
inline constexpr std::string_view tabs = "tabs";
inline constexpr std::string_view sequences = "sequences";

inline constexpr std::string_view keys = "keys";
inline constexpr std::string_view name = "name";
inline constexpr std::string_view action = "action";

inline constexpr std::string_view kind = "kind";
inline constexpr std::string_view script = "script";
inline constexpr std::string_view key = "key";
inline constexpr std::string_view modifiers = "modifiers";
inline constexpr std::string_view path = "path";

inline constexpr std::array ofMapping = {version, notes, timeoutMilliseconds, tabs, sequences};
inline constexpr std::array ofSequence = {keys, name, action};
inline constexpr std::array ofAction = {kind, script, key, modifiers, keys, path};

}  // namespace keyvora::key

namespace keyvora::kind {

inline constexpr std::string_view applescript = "applescript";
inline constexpr std::string_view keystroke = "keystroke";
inline constexpr std::string_view keytips = "keytips";
inline constexpr std::string_view menu = "menu";

inline constexpr std::array all = {applescript, keystroke, keytips, menu};

}  // namespace keyvora::kind
