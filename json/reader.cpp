#include <rapidjson/reader.h>

#include <algorithm>
#include <utility>

#include "json/encoding.h"
#include "json/source.h"
#include "json/syntax_error.h"
#include "json/tree.h"

namespace keyvora::json {
namespace {

/// The place of an offset in the text.
Position positionAt(std::string_view text, std::size_t offset) {
  Position position;
  std::size_t lineStart = 0;
  for (std::size_t i = 0; i < offset; ++i) {
    const bool ends = text[i] == '\n' || (text[i] == '\r' && text.substr(i + 1, 1) != "\n");
    if (!ends) continue;
    ++position.line;
    lineStart = i + 1;
  }
  for (const char byte : text.substr(lineStart, offset - lineStart)) {
    const bool continues = (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
    if (!continues) ++position.column;
  }
  return position;
}

/// Where in a string as it is written, its escapes being whole, one stands for the second half of a surrogate
/// pair without the first: some versions of the parser let that pass.
std::size_t loneSecondHalf(std::string_view written) {
  auto at = written.find('\\');
  while (at != written.npos) {
    const auto lower = [&](std::size_t digit) { return static_cast<char>(written[at + 2 + digit] | 0x20); };
    const bool unit = written[at + 1] == 'u';
    const bool half = unit && lower(0) == 'd' && lower(1) >= '8';
    if (half && lower(1) >= 'c') return at;
    constexpr std::size_t unitLength = 6;
    at = written.find('\\', at + (half ? 2 * unitLength : unit ? unitLength : 2));
  }
  return at;
}

/// Whether a character may stand between two tokens.
bool separates(char c) {
  return c == ' ' || c == ',' || c == ':' || c == '\n' || c == '\t' || c == '\r';
}

}  // namespace

/// Makes nodes of the parser's events. Each event comes when its token is read, so that the token's start has
/// to be found before it: nothing but white space, commas and colons stands between two tokens.
class TreeBuilder {
 public:
  explicit TreeBuilder(Tree& tree) : tree_(tree), text_(tree.text()), source_(text_) {
    // A document that people write has a key or value every dozen bytes or more.
    constexpr std::size_t bytesPerNode = 12;
    constexpr std::size_t mostReserved = std::size_t{1} << 16;
    tree_.nodes_.reserve(std::min(text_.size() / bytesPerNode, mostReserved));
    lookAhead(0);
  }

  /// Reads the whole text; the error, when it is not JSON.
  std::optional<SyntaxError> read() {
    constexpr unsigned flags = rapidjson::kParseIterativeFlag | rapidjson::kParseTrailingCommasFlag;
    rapidjson::Reader reader;
    const auto result = reader.Parse<flags>(source_, *this);
    if (own_) return own_;
    if (result.IsError()) {
      // A string that is never closed is found at the end of the text and looked for at its start.
      const bool unclosed = result.Code() == rapidjson::kParseErrorStringMissQuotationMark && source_.atEnd();
      const std::size_t offset = unclosed ? next_ : result.Offset();
      return error(syntaxErrorReason(result.Code(), text_, result.Offset()), offset);
    }
    // The parser takes a zero byte for the end.
    const std::size_t end = source_.Tell();
    if (end < text_.size()) {
      return error(syntaxErrorReason(rapidjson::kParseErrorDocumentRootNotSingular, text_, end), end);
    }
    return {};
  }

  // The parser's events. Numbers come as some integer, since the source hides what they are.
  bool Null() { return scalar(Type::null, 4); }
  bool Bool(bool value) { return scalar(Type::boolean, value ? 4 : 5); }
  bool Int(int) { return number(); }
  bool Uint(unsigned) { return number(); }
  bool Int64(std::int64_t) { return number(); }
  bool Uint64(std::uint64_t) { return number(); }
  bool Double(double) { return number(); }
  bool RawNumber(const char*, rapidjson::SizeType, bool) { return number(); }
  bool String(const char* characters, rapidjson::SizeType length, bool) {
    return string({characters, length});
  }
  bool Key(const char* characters, rapidjson::SizeType length, bool) { return string({characters, length}); }
  bool StartObject() { return open(Type::object); }
  bool StartArray() { return open(Type::array); }
  bool EndObject(rapidjson::SizeType count) { return close(count); }
  bool EndArray(rapidjson::SizeType count) { return close(count); }

 private:
  SyntaxError error(std::string reason, std::size_t offset) const {
    return {std::move(reason), positionAt(text_, offset)};
  }

  bool fail(std::string reason, std::size_t offset) {
    own_ = error(std::move(reason), offset);
    return false;
  }

  /// Finds the next token from `offset` on, and shows it as a nought when it is a number.
  void lookAhead(std::size_t offset) {
    while (offset < text_.size() && separates(text_[offset])) ++offset;
    next_ = offset;
    if (next_ == text_.size()) return;
    const char first = text_[next_];
    if (first != '-' && (first < '0' || first > '9')) return;
    numberLength_ = numberLength(text_.substr(next_));
    if (numberLength_ > 0) source_.hideNumber(next_, next_ + numberLength_);
  }

  bool add(Tree::Node node) {
    if (tree_.nodes_.size() == maximumNodes) {
      return fail("more than " + std::to_string(maximumNodes) + " keys and values", node.offset);
    }
    tree_.nodes_.push_back(node);
    return true;
  }

  static std::uint32_t narrow(std::size_t value) { return static_cast<std::uint32_t>(value); }

  bool scalar(Type type, std::size_t size) {
    if (!add({narrow(next_), narrow(size), 0, type, false})) return false;
    lookAhead(next_ + size);
    return true;
  }

  bool number() { return scalar(Type::number, numberLength_); }

  bool string(std::string_view characters) {
    const std::size_t end = source_.Tell();
    const std::size_t quotes = 2;
    const bool escaped = end - next_ != characters.size() + quotes;
    const auto written = text_.substr(next_ + 1, end - next_ - quotes);
    if (const auto half = escaped ? loneSecondHalf(written) : written.npos; half != written.npos) {
      const std::size_t offset = next_ + 1 + half;
      return fail(syntaxErrorReason(rapidjson::kParseErrorStringUnicodeSurrogateInvalid, text_, offset),
                  offset);
    }
    const std::size_t unescaped = tree_.unescaped_.size();
    if (escaped) tree_.unescaped_.append(characters);
    if (!add({narrow(next_), narrow(characters.size()), narrow(unescaped), Type::string, escaped}))
      return false;
    lookAhead(end);
    return true;
  }

  bool open(Type type) {
    if (open_.size() == maximumDepth) {
      return fail("arrays and objects nest more than " + std::to_string(maximumDepth) + " deep", next_);
    }
    open_.push_back(narrow(tree_.nodes_.size()));
    if (!add({narrow(next_), 0, 0, type, false})) return false;
    lookAhead(next_ + 1);
    return true;
  }

  bool close(std::size_t count) {
    auto& node = tree_.nodes_[open_.back()];
    open_.pop_back();
    node.size = narrow(count);
    node.extra = narrow(tree_.nodes_.size());
    lookAhead(source_.Tell() + 1);
    return true;
  }

  Tree& tree_;
  std::string_view text_;
  Source source_;
  /// Where the next token starts, and how long it is if it is a number.
  std::size_t next_ = 0;
  std::size_t numberLength_ = 0;
  std::vector<std::uint32_t> open_;
  std::optional<SyntaxError> own_;
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
  if (auto error = TreeBuilder(tree).read()) return *std::move(error);
  return tree;
}

Position Value::position() const {
  return positionAt(tree_->text(), tree_->nodes_[index_].offset);
}

}  // namespace keyvora::json
