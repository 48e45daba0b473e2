#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

#include "json/encoding.h"
#include "json/tree.h"
#include "text/ascii.h"
#include "text/utf8.h"

namespace keyvora::json {
namespace {

/// The position of offset `end` in the text, counted from the known position of offset `begin`.
Position positionAt(std::string_view text, std::size_t end, Position position = {}, std::size_t begin = 0) {
  for (std::size_t i = begin; i < end; ++i) {
    if (text[i] == '\n' || (text[i] == '\r' && text.substr(i + 1, 1) != "\n")) {
      ++position.line;
      position.column = 1;
    } else if ((static_cast<unsigned char>(text[i]) & 0xC0) != 0x80) {
      ++position.column;
    }
  }
  return position;
}

/// The distance in bytes between two stored positions.
constexpr std::size_t milestone = 1024;

/// The positions of the offsets 0, 1024, 2048, ...
std::vector<Position> milestonesOf(std::string_view text) {
  std::vector<Position> places{Position{}};
  places.reserve(text.size() / milestone + 1);
  for (std::size_t end = milestone; end < text.size(); end += milestone) {
    places.push_back(positionAt(text, end, places.back(), end - milestone));
  }
  return places;
}

std::optional<char32_t> hexadecimal(std::string_view digits) {
  char32_t value = 0;
  for (const char c : digits) {
    const char lower = text::asciiLower(c);
    if (!text::isAsciiDigit(c) && (lower < 'a' || lower > 'f')) return {};
    value = value * 16 + static_cast<char32_t>(text::isAsciiDigit(c) ? c - '0' : lower - 'a' + 10);
  }
  return value;
}

}  // namespace

/// Reads a document by recursive descent, at most `maximumDepth` levels deep. Each step is named after what
/// it reads and returns false on a fault. Only the first fault is kept.
class Reader {
 public:
  explicit Reader(Tree& tree) : tree_(tree), text_(tree.text()) {
    // Documents written by people have at least one key or value in every dozen bytes.
    constexpr std::size_t bytesPerNode = 12;
    constexpr std::size_t mostReserved = std::size_t{1} << 16;
    tree_.nodes_.reserve(std::min(text_.size() / bytesPerNode, mostReserved));
  }

  /// Reads the whole text. Returns the error if it is not JSON.
  std::optional<SyntaxError> read() {
    if (next() == end) {
      fail("the document is empty", at_);
    } else if (value() && next() != end) {
      failToFind("nothing more after the document");
    }
    return std::move(error_);
  }

 private:
  /// The value of `peek` and `next` at the end of the text.
  static constexpr int end = -1;

  [[nodiscard]] int peek() const { return at_ < text_.size() ? static_cast<unsigned char>(text_[at_]) : end; }

  /// The character that follows white space.
  int next() {
    while (at_ < text_.size() &&
           (text_[at_] == ' ' || text_[at_] == '\n' || text_[at_] == '\r' || text_[at_] == '\t'))
      ++at_;
    return peek();
  }

  bool take(char c) {
    if (peek() != c) return false;
    ++at_;
    return true;
  }

  bool fail(std::string reason, std::size_t offset) {
    error_ = SyntaxError{std::move(reason), positionAt(text_, offset)};
    return false;
  }

  /// The character at an offset, for an error message: itself, or its number when it does not print.
  [[nodiscard]] std::string shown(std::size_t offset) const {
    if (offset >= text_.size()) return "the end of the document";
    const auto codePoint = text::firstCodePoint(text_.substr(offset));
    if (codePoint.value > 0x20 && codePoint.value < 0x7F) return {'\'', text_[offset], '\''};
    std::array<char, 16> number{};
    std::snprintf(number.data(), number.size(), "U+%04X", static_cast<unsigned>(codePoint.value));
    return number.data();
  }

  bool failToFind(std::string_view what) {
    if (peek() == '/' || peek() == '#') return fail("comments are not allowed", at_);
    return fail("expected " + std::string(what) + ", found " + shown(at_), at_);
  }

  /// Adds a node that starts at an offset; its size and the rest are filled in later.
  bool add(Type type, std::size_t offset) {
    if (tree_.nodes_.size() == maximumNodes) {
      return fail("more than " + std::to_string(maximumNodes) + " keys and values", offset);
    }
    tree_.nodes_.push_back({narrow(offset), 0, 0, type, false});
    return true;
  }

  static std::uint32_t narrow(std::size_t value) { return static_cast<std::uint32_t>(value); }

  bool value() {
    const int c = next();
    if (c == '{') return container(Type::object, "a comma or '}'");
    if (c == '[') return container(Type::array, "a comma or ']'");
    if (c == '"') return string();
    if (c == 't') return literal("true", Type::boolean);
    if (c == 'f') return literal("false", Type::boolean);
    if (c == 'n') return literal("null", Type::null);
    if (c == '-' || (c >= '0' && c <= '9')) return number();
    if (c == '\'') return fail("strings are written in double quotes", at_);
    return failToFind("a value");
  }

  bool literal(std::string_view word, Type type) {
    const std::size_t begin = at_;
    for (const char c : word) {
      if (!take(c)) return failToFind("a value");
    }
    if (!add(type, begin)) return false;
    tree_.nodes_.back().size = narrow(word.size());
    return true;
  }

  bool digits(std::string_view where) {
    if (!text::isAsciiDigit(static_cast<char>(peek()))) return failToFind(where);
    while (text::isAsciiDigit(static_cast<char>(peek()))) ++at_;
    return true;
  }

  bool number() {
    const std::size_t begin = at_;
    take('-');
    if (!take('0') && !digits("a value")) return false;
    if (take('.') && !digits("a digit after the decimal point")) return false;
    if (take('e') || take('E')) {
      if (!take('+')) take('-');
      if (!digits("a digit in the exponent")) return false;
    }
    if (!add(Type::number, begin)) return false;
    tree_.nodes_.back().size = narrow(at_ - begin);
    return true;
  }

  /// An array or object; one trailing comma is allowed.
  bool container(Type type, std::string_view separator) {
    if (depth_ == maximumDepth) {
      return fail("arrays and objects nest more than " + std::to_string(maximumDepth) + " deep", at_);
    }
    const std::size_t node = tree_.nodes_.size();
    if (!add(type, at_++)) return false;
    ++depth_;
    const char close = type == Type::object ? '}' : ']';
    std::size_t count = 0;
    while (next() != close) {
      if (count > 0 && !take(',')) return failToFind(separator);
      if (count > 0 && next() == close) break;
      if (!(type == Type::object ? member() : value())) return false;
      ++count;
    }
    ++at_;
    --depth_;
    tree_.nodes_[node].size = narrow(count);
    tree_.nodes_[node].extra = narrow(tree_.nodes_.size());
    return true;
  }

  bool member() {
    if (next() != '"') return failToFind("a key in double quotes");
    if (!string()) return false;
    next();
    return take(':') ? value() : failToFind("a colon after the key");
  }

  bool string() {
    const std::size_t begin = at_++;
    if (!add(Type::string, begin)) return false;
    const std::size_t unescaped = tree_.unescaped_.size();
    std::size_t copied = at_;  // the text up to here is in `unescaped_`, after the first escape
    bool escaped = false;
    while (!take('"')) {
      if (at_ == text_.size()) return fail("the string has no end", begin);
      if (text_[at_] == '\\') {
        tree_.unescaped_.append(text_.substr(copied, at_ - copied));
        escaped = true;
        if (!escape()) return false;
        copied = at_;
      } else if (static_cast<unsigned char>(text_[at_]) < 0x20) {
        return fail("a control character in a string is written as an escape, found " + shown(at_), at_);
      } else {
        ++at_;
      }
    }
    auto& node = tree_.nodes_.back();
    node.escaped = escaped;
    node.extra = narrow(unescaped);
    if (escaped) tree_.unescaped_.append(text_.substr(copied, at_ - 1 - copied));
    node.size = narrow(escaped ? tree_.unescaped_.size() - unescaped : at_ - begin - 2);
    return true;
  }

  bool escape() {
    const std::size_t begin = at_++;
    constexpr std::string_view names = "\"\\/bfnrt";
    constexpr std::string_view characters = "\"\\/\b\f\n\r\t";
    if (take('u')) return unicodeEscape(begin);
    const auto which = at_ < text_.size() ? names.find(text_[at_]) : names.npos;
    if (which == names.npos) return fail("no escape starts with a backslash and " + shown(at_), begin);
    tree_.unescaped_ += characters[which];
    ++at_;
    return true;
  }

  /// The four digits after \u, and the second half of a surrogate pair.
  bool unicodeEscape(std::size_t begin) {
    const auto unit = [&]() -> std::optional<char32_t> {
      constexpr std::size_t length = 4;
      const auto digits = text_.substr(std::min(at_, text_.size()), length);
      at_ += digits.size();
      return digits.size() == length ? hexadecimal(digits) : std::nullopt;
    };
    constexpr auto badDigits = "\\u takes four hexadecimal digits";
    constexpr auto badHalf = "half of a surrogate pair is no character";
    auto codePoint = unit();
    if (!codePoint) return fail(badDigits, begin);
    if (*codePoint >= 0xDC00 && *codePoint <= 0xDFFF) return fail(badHalf, begin);
    if (*codePoint >= 0xD800 && *codePoint <= 0xDBFF) {
      if (!take('\\') || !take('u')) return fail(badHalf, begin);
      const auto second = unit();
      if (!second) return fail(badDigits, begin);
      if (*second < 0xDC00 || *second > 0xDFFF) return fail(badHalf, begin);
      codePoint = 0x10000 + ((*codePoint - 0xD800) << 10) + (*second - 0xDC00);
    }
    text::append(tree_.unescaped_, *codePoint);
    return true;
  }

  Tree& tree_;
  std::string_view text_;
  std::size_t at_ = 0;
  std::size_t depth_ = 0;
  std::optional<SyntaxError> error_;
};

std::variant<Tree, SyntaxError> Tree::parse(std::string_view bytes) {
  if (bytes.size() > maximumBytes) {
    return SyntaxError{"the document is longer than " + std::to_string(maximumBytes) + " bytes", {}};
  }
  auto document = utf8Document(bytes);
  Tree tree;
  tree.bytes_ = document.bytes;
  tree.converted_ = std::move(document.converted);
  if (document.fault) {
    return SyntaxError{"the text is not well-formed Unicode", positionAt(tree.text(), *document.fault)};
  }
  if (auto error = Reader(tree).read()) return *std::move(error);
  tree.milestones_ = milestonesOf(tree.text());
  return tree;
}

std::size_t Value::offset() const {
  return tree_->nodes_[index_].offset;
}

Position Value::position() const {
  const auto before = offset() / milestone;
  return positionAt(tree_->text(), offset(), tree_->milestones_[before], before * milestone);
}

}  // namespace keyvora::json
