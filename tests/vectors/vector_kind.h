#pragma once

#include <rapidjson/document.h>

#include <optional>
#include <span>
#include <string>
#include <string_view>

/// Test vectors are files of JSON objects, one per line. Each kind of file has a function that checks a
/// line against the program. To add a kind, add a source file with its function, and declare and list it
/// below.
namespace keyvora::vectors {

/// A line of a vector file.
using Line = rapidjson::Value;

/// Expected and actual value of a line, for people to compare.
struct Mismatch {
  std::string expected;
  std::string actual;
};

/// Checks one line; none when the program agrees. Throws `MalformedLine` (line.h) for a line without what
/// the kind needs.
using Check = std::optional<Mismatch> (*)(const Line& line);

/// A kind of vectors: the name of its file and its check.
struct VectorKind {
  std::string_view file;
  Check check;
};

/// All kinds, in the order in which they run.
std::span<const VectorKind> vectorKinds();

std::optional<Mismatch> checkDecode(const Line& line);
std::optional<Mismatch> checkEqual(const Line& line);
std::optional<Mismatch> checkKeycode(const Line& line);
std::optional<Mismatch> checkKeytips(const Line& line);
std::optional<Mismatch> checkLetters(const Line& line);
std::optional<Mismatch> checkLookup(const Line& line);
std::optional<Mismatch> checkMenu(const Line& line);
std::optional<Mismatch> checkTap(const Line& line);
std::optional<Mismatch> checkTyping(const Line& line);
std::optional<Mismatch> checkVersions(const Line& line);

}  // namespace keyvora::vectors
