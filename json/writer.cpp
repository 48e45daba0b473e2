#include "json/writer.h"

#include <array>
#include <cstdio>

namespace keyvora::json {

void Writer::key(std::string_view key) {
  separate();
  quoted(key);
  text_ += ':';
  follows_ = false;
}

void Writer::string(std::string_view text) {
  separate();
  quoted(text);
}

void Writer::number(std::int64_t number) {
  separate();
  text_ += std::to_string(number);
}

void Writer::open(char bracket) {
  separate();
  text_ += bracket;
  follows_ = false;
}

void Writer::close(char bracket) {
  text_ += bracket;
  follows_ = true;
}

void Writer::separate() {
  if (follows_) text_ += ',';
  follows_ = true;
}

void Writer::quoted(std::string_view text) {
  constexpr std::string_view escaped = "\"\\\b\f\n\r\t";
  constexpr std::string_view names = "\"\\bfnrt";
  text_ += '"';
  for (const char c : text) {
    if (const auto which = escaped.find(c); which != escaped.npos) {
      text_ += {'\\', names[which]};
    } else if (static_cast<unsigned char>(c) < 0x20) {
      std::array<char, 8> number{};
      std::snprintf(number.data(), number.size(), "\\u%04X", static_cast<unsigned>(c));
      text_ += number.data();
    } else {
      text_ += c;
    }
  }
  text_ += '"';
}

}  // namespace keyvora::json
