#include <gtest/gtest.h>

#include <chrono>

#include "mapping/decode.h"
#include "tests/mapping/counting_new.h"
#include "tests/support/processor_time.h"

namespace keyvora {
namespace {

constexpr std::size_t mebibyte = std::size_t{1} << 20;

/// The time limit for any document, on a slow machine with sanitizers. Without them, each takes well under
/// a second.
constexpr auto longest = std::chrono::seconds(20);

std::string repeated(std::string_view text, std::size_t bytes) {
  std::string result;
  result.reserve(bytes + text.size());
  while (result.size() < bytes) result += text;
  return result;
}

/// The description of the failure that a document must cause, in bounded time and memory.
std::string failure(const std::string& document, std::size_t mostBytes) {
  counting::reset();
  const auto start = test::processorTime();
  const auto result = decode(document);
  EXPECT_LT(test::processorTime() - start, longest);
  EXPECT_LT(counting::since().peakBytes, mostBytes);
  const auto* error = std::get_if<DecodingError>(&result);
  return error == nullptr ? "none" : error->description;
}

TEST(HostileDocuments, AreRejectedInBoundedTimeAndMemory) {
  struct Row {
    const char* name;
    std::string document;
    std::size_t mostBytes;
    std::string_view description;
  };
  const std::size_t size = 2 * mebibyte;
  const std::size_t few = 2 * mebibyte;
  constexpr std::size_t node = 16;
  const std::size_t allNodes = 3 * node * json::maximumNodes;
  const Row rows[] = {
      {"brackets", std::string(64 * mebibyte, '['), few,
       "not valid JSON: arrays and objects nest more than 512 deep (line 1, column 513)"},
      {"objects", repeated("{\"a\":", 64 * mebibyte), few,
       "not valid JSON: arrays and objects nest more than 512 deep (line 1, column 2561)"},
      {"pairs of brackets", "[" + repeated("[],", 64 * mebibyte), allNodes,
       "not valid JSON: more than 4194304 keys and values (line 1, column 12582911)"},
      {"ill-formed UTF-8", std::string(64 * mebibyte, '\xFF'), few,
       "not valid JSON: the text is not well-formed Unicode (line 1, column 1)"},
      {"zeros", std::string(64 * mebibyte, '\0'), few,
       "not valid JSON: expected a value, found U+0000 (line 1, column 1)"},
      {"digits", std::string(size, '9'), few, "expected an object, found a number (line 1, column 1)"},
      {"a version of digits", "{\"version\":" + std::string(size, '9') + "}", few,
       "version: 9999999999999999999999999999999999999999… does not fit 64 bits (line 1, column 12)"},
      {"a version of decimals", "{\"version\":1." + std::string(size, '1') + "}", few,
       "version: 1.11111111111111111111111111111111111111… is not an integer (line 1, column 12)"},
      {"a version of zeros", "{\"version\":9223372036854774784." + std::string(size, '0') + "1}",
       few + 3 * size,
       "version: 9223372036854774784.00000000000000000000… is not an integer (line 1, column 12)"},
      {"an exponent of digits", "{\"version\":1e" + std::string(size, '1') + "}", few,
       "version: 1e11111111111111111111111111111111111111… does not fit 64 bits (line 1, column 12)"},
      {"a string without end", "\"" + std::string(size, 'a'), few,
       "not valid JSON: the string has no end (line 1, column 1)"},
      {"white space", std::string(size, ' '), few,
       "not valid JSON: the document is empty (line 1, column 2097153)"},
      {"commas", "[" + std::string(size, ','), few,
       "not valid JSON: expected a value, found ',' (line 1, column 2)"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(failure(row.document, row.mostBytes), row.description);
  }
}

TEST(HostileDocuments, NestAsDeepAsAllowed) {
  const auto nested = [](std::size_t depth) {
    return R"({"version":1,"tabs":{},"sequences":[],"x":)" + std::string(depth - 1, '[') +
           std::string(depth - 1, ']') + "}";
  };
  EXPECT_TRUE(std::holds_alternative<Mapping>(decode(nested(512))));
  EXPECT_TRUE(std::holds_alternative<DecodingError>(decode(nested(513))));
}

}  // namespace
}  // namespace keyvora
