#pragma once

#include <rapidjson/document.h>

#include <optional>
#include <span>
#include <string>
#include <string_view>

/// Test vectors are files of JSON objects, one a line; every kind of file has a function that checks a line
/// against the program. To add a kind: one source file with its function, declared and listed below.
namespace keyvora::vectors {

/// A line of a vector file.
using Line = rapidjson::Value;

/// What a line expects and what the program gave instead, as people can compare them.
struct Mismatch {
  std::string expected;
  std::string actual;
};

/// Checks one line: nothing when the program agrees. A line that lacks what the kind needs throws
/// `MalformedLine` (line.h).
using Check = std::optional<Mismatch> (*)(const Line& line);

/// A kind of vectors: the name of its file and how to check a line.
struct VectorKind {
  std::string_view file;
  Check check;
};

/// All kinds, in the order in which they are run.
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
