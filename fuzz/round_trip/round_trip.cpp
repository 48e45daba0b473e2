// Mappings of any content: what is encoded decodes to an equal mapping, and encodes to the same bytes again.

#include "fuzz/input.h"
#include "mapping/decode.h"
#include "mapping/encode.h"

namespace keyvora::fuzz {
namespace {

constexpr std::size_t longestText = 12;

std::vector<std::string> someTexts(FuzzedDataProvider& input) {
  std::vector<std::string> result;
  for (auto left = input.ConsumeIntegralInRange(0, 4); left > 0; --left) {
    result.push_back(someText(input, longestText));
  }
  return result;
}

Action someAction(FuzzedDataProvider& input) {
  switch (input.ConsumeIntegralInRange(0, 3)) {
    case 0:
      return action::AppleScript{someText(input, longestText)};
    case 1: {
      auto key = someText(input, longestText);
      return action::Keystroke{std::move(key), someTexts(input)};
    }
    case 2:
      return action::KeyTips{someText(input, longestText)};
    default:
      return action::Menu{someTexts(input)};
  }
}

Mapping someMapping(FuzzedDataProvider& input) {
  Mapping mapping;
  mapping.version = input.ConsumeIntegral<std::int64_t>();
  if (input.ConsumeBool()) mapping.notes = someTexts(input);
  if (input.ConsumeBool()) mapping.timeoutMilliseconds = input.ConsumeIntegral<std::int64_t>();
  for (auto left = input.ConsumeIntegralInRange(0, 4); left > 0; --left) {
    auto key = someText(input, longestText);
    mapping.tabs.emplace(std::move(key), someText(input, longestText));
  }
  while (input.remaining_bytes() > 0 && mapping.sequences.size() < 50) {
    Sequence sequence;
    sequence.keys = someText(input, longestText);
    sequence.name = someText(input, longestText);
    sequence.action = someAction(input);
    mapping.sequences.push_back(std::move(sequence));
  }
  return mapping;
}

void check(const Mapping& mapping) {
  const auto bytes = encode(mapping);
  require(isWellFormed(bytes) && bytes.find('\n') == std::string::npos, "the encoding is one line of UTF-8");
  const auto decoded = decode(bytes);
  require(std::holds_alternative<Mapping>(decoded), "what was encoded decodes");
  require(std::get<Mapping>(decoded) == mapping, "to an equal mapping");
  require(encode(std::get<Mapping>(decoded)) == bytes, "which encodes to the same bytes");
}

}  // namespace
}  // namespace keyvora::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace keyvora;
  FuzzedDataProvider input(data, size);
  fuzz::check(fuzz::someMapping(input));
  // Also takes the bytes as a document, so that seeds and dictionaries of documents are useful.
  const auto decoded = decode({reinterpret_cast<const char*>(data), size});
  if (const auto* mapping = std::get_if<Mapping>(&decoded)) fuzz::check(*mapping);
  return 0;
}
