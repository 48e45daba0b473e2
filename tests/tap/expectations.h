#pragma once

#include <cctype>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "mapping/mapping.h"
#include "platform/keyboard.h"
#include "tests/tap/trace.h"

/// Words for tests of the tap that read as tables.
namespace keyvora::testing {

/// Virtual key codes.
namespace key {
inline constexpr std::uint16_t a = 0;
inline constexpr std::uint16_t f = 3;
inline constexpr std::uint16_t h = 4;
inline constexpr std::uint16_t x = 7;
inline constexpr std::uint16_t c = 8;
inline constexpr std::uint16_t returnKey = 36;
inline constexpr std::uint16_t tab = 48;
inline constexpr std::uint16_t space = 49;
inline constexpr std::uint16_t deleteKey = 51;
inline constexpr std::uint16_t escape = 53;
inline constexpr std::uint16_t rightCommand = 54;
inline constexpr std::uint16_t leftCommand = 55;
inline constexpr std::uint16_t leftShift = 56;
inline constexpr std::uint16_t capsLock = 57;
inline constexpr std::uint16_t leftOption = 58;
inline constexpr std::uint16_t leftControl = 59;
inline constexpr std::uint16_t rightShift = 60;
inline constexpr std::uint16_t rightOption = 61;
inline constexpr std::uint16_t rightControl = 62;
inline constexpr std::uint16_t fn = 63;
inline constexpr std::uint16_t keypad1 = 83;
inline constexpr std::uint16_t f1 = 122;
inline constexpr std::uint16_t leftArrow = 123;
}  // namespace key

/// What can be seen.
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

/// What a step did: an event that reached the target, one that did not, or no event at all.
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

/// A sequence whose name and key tips are made from its keys.
inline Sequence tips(const std::string& keys) {
  return {keys, "n" + keys, action::KeyTips{"t" + keys}};
}

/// What is seen when such a sequence fires.
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
