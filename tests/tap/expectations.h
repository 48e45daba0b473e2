#pragma once

#include <cctype>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "mapping/mapping.h"
#include "platform/key_code.h"
#include "platform/keyboard.h"
#include "tests/tap/trace.h"

/// Helpers that make tests of the tap read like tables.
namespace keyvora::testing {

namespace key = platform::key_code;

/// Visible effects.
inline Happening reportsArmed(std::string text) {
  return {"report", "true", std::move(text)};
}
inline Happening reportsIdle() {
  return {"report", "false", ""};
}
inline Happening logs(std::string line) {
  return {"log", std::move(line)};
}
inline Happening enables() {
  return {"enable"};
}
inline Happening types(std::string keys, std::string label) {
  return {"run", "keytips", std::move(keys), std::move(label)};
}

/// The result of a step: an event that reached the target, one that did not, or no event.
inline StepResult passes(std::vector<Happening> trace = {}) {
  return {platform::Verdict::pass, std::move(trace)};
}
inline StepResult swallows(std::vector<Happening> trace = {}) {
  return {platform::Verdict::swallow, std::move(trace)};
}
inline StepResult brings(std::vector<Happening> trace = {}) {
  return {std::nullopt, std::move(trace)};
}

inline StepResult arms() {
  return passes({reportsArmed(""), logs("armed: Option tapped in Excel")});
}

/// The words as the name of a parameterised test.
inline std::string testName(std::string words) {
  for (auto& c : words) {
    if (std::isalnum(static_cast<unsigned char>(c)) == 0) c = '_';
  }
  return words;
}

/// A sequence whose name and key tips are derived from its keys.
inline Sequence tips(const std::string& keys) {
  return {keys, "n" + keys, action::KeyTips{"t" + keys}};
}

/// The effects when such a sequence fires.
inline std::vector<Happening> firing(const std::string& keys) {
  return {reportsIdle(), types("t" + keys, keys + "  n" + keys)};
}

/// A document of such sequences.
inline Mapping mappingOf(const std::vector<std::string>& keys) {
  Mapping mapping;
  for (const auto& each : keys) mapping.sequences.push_back(tips(each));
  return mapping;
}

}  // namespace keyvora::testing
