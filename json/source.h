#pragma once

#include <cstddef>
#include <string_view>

namespace keyvora::json {

/// The length of the number that `text` starts with, by the grammar of JSON; 0 when it starts with none or
/// with one that breaks off.
std::size_t numberLength(std::string_view text);

/// The text as RapidJSON's reader takes it: a stream that knows its end and hides numbers.
///
/// The reader turns away numbers that are too large for a double, which JSON allows and which matter only
/// where a number is asked for. So each well-formed number is shown to it as a single nought: `hideNumber` is
/// told of the next one ahead of time.
class Source {
 public:
  using Ch = char;

  explicit Source(std::string_view text) : text_(text) {}

  /// Shows the characters from `begin`, which is not behind the reader, to `end` as one nought.
  void hideNumber(std::size_t begin, std::size_t end) {
    numberBegin_ = begin;
    numberEnd_ = end;
  }

  /// The next character, a zero byte at the end.
  [[nodiscard]] char Peek() const {
    if (at_ == numberBegin_) return '0';
    if (at_ >= text_.size()) return '\0';
    // The number is whole: what would go on with a nought must not ("1.5.5" as "0.5").
    constexpr std::string_view goesOn = ".eE";
    constexpr char nothing = '\x01';
    if (at_ == numberEnd_ && goesOn.find(text_[at_]) != goesOn.npos) return nothing;
    return text_[at_];
  }

  char Take() {
    const char taken = Peek();
    at_ = at_ == numberBegin_ ? numberEnd_ : at_ + 1;
    return taken;
  }

  /// How many bytes are taken.
  [[nodiscard]] std::size_t Tell() const { return at_; }

  [[nodiscard]] bool atEnd() const { return at_ == text_.size(); }

  // What the reader needs to parse in place, which is never asked for.
  char* PutBegin() { return nullptr; }
  void Put(char) {}
  std::size_t PutEnd(char*) { return 0; }

 private:
  static constexpr std::size_t none = static_cast<std::size_t>(-1);
  std::string_view text_;
  std::size_t at_ = 0;
  std::size_t numberBegin_ = none;
  std::size_t numberEnd_ = none;
};

}  // namespace keyvora::json
