#pragma once

#include <cstdint>

/// The virtual key codes of macOS (HIToolbox, Events.h), by the key names of its ANSI keyboard. A code
/// names a place on the keyboard, independent of the layout. Every host and every component uses these.
namespace keyvora::platform::key_code {

inline constexpr std::uint16_t a = 0;
inline constexpr std::uint16_t s = 1;
inline constexpr std::uint16_t d = 2;
inline constexpr std::uint16_t f = 3;
inline constexpr std::uint16_t h = 4;
inline constexpr std::uint16_t g = 5;
inline constexpr std::uint16_t z = 6;
inline constexpr std::uint16_t x = 7;
inline constexpr std::uint16_t c = 8;
inline constexpr std::uint16_t v = 9;
inline constexpr std::uint16_t b = 11;
inline constexpr std::uint16_t q = 12;
inline constexpr std::uint16_t w = 13;
inline constexpr std::uint16_t e = 14;
inline constexpr std::uint16_t r = 15;
inline constexpr std::uint16_t y = 16;
inline constexpr std::uint16_t t = 17;
inline constexpr std::uint16_t digit1 = 18;
inline constexpr std::uint16_t digit2 = 19;
inline constexpr std::uint16_t digit3 = 20;
inline constexpr std::uint16_t digit4 = 21;
inline constexpr std::uint16_t digit6 = 22;
inline constexpr std::uint16_t digit5 = 23;
inline constexpr std::uint16_t equal = 24;
inline constexpr std::uint16_t digit9 = 25;
inline constexpr std::uint16_t digit7 = 26;
inline constexpr std::uint16_t minus = 27;
inline constexpr std::uint16_t digit8 = 28;
inline constexpr std::uint16_t digit0 = 29;
inline constexpr std::uint16_t rightBracket = 30;
inline constexpr std::uint16_t o = 31;
inline constexpr std::uint16_t u = 32;
inline constexpr std::uint16_t leftBracket = 33;
inline constexpr std::uint16_t i = 34;
inline constexpr std::uint16_t p = 35;
inline constexpr std::uint16_t l = 37;
inline constexpr std::uint16_t j = 38;
inline constexpr std::uint16_t quote = 39;
inline constexpr std::uint16_t k = 40;
inline constexpr std::uint16_t semicolon = 41;
inline constexpr std::uint16_t backslash = 42;
inline constexpr std::uint16_t comma = 43;
inline constexpr std::uint16_t slash = 44;
inline constexpr std::uint16_t n = 45;
inline constexpr std::uint16_t m = 46;
inline constexpr std::uint16_t period = 47;
inline constexpr std::uint16_t grave = 50;

inline constexpr std::uint16_t returnKey = 36;
inline constexpr std::uint16_t tab = 48;
inline constexpr std::uint16_t space = 49;
/// Called Backspace on other keyboards.
inline constexpr std::uint16_t deleteKey = 51;
inline constexpr std::uint16_t escape = 53;

// The modifier keys, in the order of their codes.
inline constexpr std::uint16_t rightCommand = 54;
inline constexpr std::uint16_t leftCommand = 55;
inline constexpr std::uint16_t leftShift = 56;
inline constexpr std::uint16_t capsLock = 57;
inline constexpr std::uint16_t leftOption = 58;
inline constexpr std::uint16_t leftControl = 59;
inline constexpr std::uint16_t rightShift = 60;
inline constexpr std::uint16_t rightOption = 61;
inline constexpr std::uint16_t rightControl = 62;
inline constexpr std::uint16_t function = 63;

inline constexpr std::uint16_t f1 = 122;
inline constexpr std::uint16_t f2 = 120;
inline constexpr std::uint16_t f3 = 99;
inline constexpr std::uint16_t f4 = 118;
inline constexpr std::uint16_t f5 = 96;
inline constexpr std::uint16_t f6 = 97;
inline constexpr std::uint16_t f7 = 98;
inline constexpr std::uint16_t f8 = 100;
inline constexpr std::uint16_t f9 = 101;
inline constexpr std::uint16_t f10 = 109;
inline constexpr std::uint16_t f11 = 103;
inline constexpr std::uint16_t f12 = 111;
inline constexpr std::uint16_t f13 = 105;
inline constexpr std::uint16_t f14 = 107;
inline constexpr std::uint16_t f15 = 113;
inline constexpr std::uint16_t f16 = 106;
inline constexpr std::uint16_t f17 = 64;
inline constexpr std::uint16_t f18 = 79;
inline constexpr std::uint16_t f19 = 80;
inline constexpr std::uint16_t f20 = 90;

/// Called Insert on other keyboards.
inline constexpr std::uint16_t help = 114;
inline constexpr std::uint16_t home = 115;
inline constexpr std::uint16_t pageUp = 116;
/// Called Delete on other keyboards.
inline constexpr std::uint16_t forwardDelete = 117;
inline constexpr std::uint16_t end = 119;
inline constexpr std::uint16_t pageDown = 121;
inline constexpr std::uint16_t leftArrow = 123;
inline constexpr std::uint16_t rightArrow = 124;
inline constexpr std::uint16_t downArrow = 125;
inline constexpr std::uint16_t upArrow = 126;
inline constexpr std::uint16_t contextualMenu = 110;

inline constexpr std::uint16_t keypadDecimal = 65;
inline constexpr std::uint16_t keypadMultiply = 67;
inline constexpr std::uint16_t keypadPlus = 69;
/// Called Num Lock on other keyboards.
inline constexpr std::uint16_t keypadClear = 71;
inline constexpr std::uint16_t keypadDivide = 75;
inline constexpr std::uint16_t keypadEnter = 76;
inline constexpr std::uint16_t keypadMinus = 78;
inline constexpr std::uint16_t keypadEquals = 81;
inline constexpr std::uint16_t keypad0 = 82;
inline constexpr std::uint16_t keypad1 = 83;
inline constexpr std::uint16_t keypad2 = 84;
inline constexpr std::uint16_t keypad3 = 85;
inline constexpr std::uint16_t keypad4 = 86;
inline constexpr std::uint16_t keypad5 = 87;
inline constexpr std::uint16_t keypad6 = 88;
inline constexpr std::uint16_t keypad7 = 89;
inline constexpr std::uint16_t keypad8 = 91;
inline constexpr std::uint16_t keypad9 = 92;

inline constexpr std::uint16_t volumeUp = 72;
inline constexpr std::uint16_t volumeDown = 73;
inline constexpr std::uint16_t mute = 74;

/// To the right of left Shift on ISO keyboards.
inline constexpr std::uint16_t isoSection = 10;
inline constexpr std::uint16_t jisYen = 93;
inline constexpr std::uint16_t jisUnderscore = 94;

/// Every code is below this.
inline constexpr std::uint16_t count = 128;

/// No key: a key without a code on macOS, or a character that no key types.
inline constexpr std::uint16_t none = 0xFFFF;

/// Whether the key is the left or the right Option key.
constexpr bool isOption(std::uint16_t keyCode) {
  return keyCode == leftOption || keyCode == rightOption;
}

}  // namespace keyvora::platform::key_code
