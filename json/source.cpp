#include "json/source.h"

namespace keyvora::json {
namespace {

/// Takes what the grammar of a number allows, piece by piece.
class NumberScanner {
 public:
  explicit NumberScanner(std::string_view text) : text_(text) {}

  [[nodiscard]] std::size_t at() const { return at_; }

  bool take(char a, char b) {
    if (at_ == text_.size() || (text_[at_] != a && text_[at_] != b)) return false;
    ++at_;
    return true;
  }

  bool takeDigits() {
    const std::size_t begin = at_;
    while (at_ < text_.size() && text_[at_] >= '0' && text_[at_] <= '9') ++at_;
    return at_ > begin;
  }

 private:
  std::string_view text_;
  std::size_t at_ = 0;
};

}  // namespace

std::size_t numberLength(std::string_view text) {
  NumberScanner scanner(text);
  scanner.take('-', '-');
  if (!scanner.take('0', '0') && !scanner.takeDigits()) return 0;
  if (scanner.take('.', '.') && !scanner.takeDigits()) return 0;
  if (scanner.take('e', 'E')) {
    scanner.take('+', '-');
    if (!scanner.takeDigits()) return 0;
  }
  return scanner.at();
}

}  // namespace keyvora::json
