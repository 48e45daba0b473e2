#pragma once

/// ASCII without a locale: bytes outside ASCII are neither letters nor digits, and have no case. Pure
/// functions, any thread.
namespace keyvora::text {

constexpr bool isAsciiUpper(char c) {
  return c >= 'A' && c <= 'Z';
}

constexpr bool isAsciiLower(char c) {
  return c >= 'a' && c <= 'z';
}

constexpr bool isAsciiLetter(char c) {
  return isAsciiUpper(c) || isAsciiLower(c);
}

constexpr bool isAsciiDigit(char c) {
  return c >= '0' && c <= '9';
}

constexpr char asciiLower(char c) {
  return isAsciiUpper(c) ? static_cast<char>(c - 'A' + 'a') : c;
}

constexpr char asciiUpper(char c) {
  return isAsciiLower(c) ? static_cast<char>(c - 'a' + 'A') : c;
}

}  // namespace keyvora::text
