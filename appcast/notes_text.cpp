#include "appcast/notes_text.h"

#include <utf8proc.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>

namespace keyvora::appcast {
namespace {

bool isSpace(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

char lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool isOneOf(std::string_view name, std::initializer_list<std::string_view> names) {
  return std::ranges::find(names, name) != names.end();
}

std::string encoded(std::uint32_t codePoint) {
  if (codePoint == 0 || !utf8proc_codepoint_valid(static_cast<utf8proc_int32_t>(codePoint))) return "\uFFFD";
  std::array<utf8proc_uint8_t, 4> bytes{};
  const auto length = utf8proc_encode_char(static_cast<utf8proc_int32_t>(codePoint), bytes.data());
  return {reinterpret_cast<const char*>(bytes.data()), static_cast<std::size_t>(length)};
}

/// What a character reference such as "amp" or "#8217" stands for; none for one that is not known.
std::optional<std::string> referenced(std::string_view name) {
  if (name.starts_with('#')) {
    const bool isHexadecimal = name.size() > 1 && lower(name[1]) == 'x';
    const auto digits = name.substr(isHexadecimal ? 2 : 1);
    std::uint32_t codePoint = 0;
    const auto [end, error] =
        std::from_chars(digits.data(), digits.data() + digits.size(), codePoint, isHexadecimal ? 16 : 10);
    if (error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
    return encoded(codePoint);
  }
  struct Named {
    std::string_view name;
    std::string_view text;
  };
  // What people write in release notes; anything rarer is written as itself these days.
  static constexpr Named known[] = {
      {"amp", "&"},   {"lt", "<"},    {"gt", ">"},     {"quot", "\""}, {"apos", "'"},  {"nbsp", " "},
      {"ndash", "–"}, {"mdash", "—"}, {"hellip", "…"}, {"lsquo", "‘"}, {"rsquo", "’"}, {"ldquo", "“"},
      {"rdquo", "”"}, {"bull", "•"},  {"copy", "©"},   {"rarr", "→"},  {"larr", "←"},  {"times", "×"},
  };
  const auto* found = std::ranges::find(known, name, &Named::name);
  return found != std::end(known) ? std::optional<std::string>(found->text) : std::nullopt;
}

class Reducer {
 public:
  explicit Reducer(std::string_view html) : html_(html) {}

  std::string run() {
    while (at_ < html_.size()) {
      const char c = html_[at_];
      if (c == '<' && tag()) continue;
      if (c == '&' && reference()) continue;
      character(c);
      ++at_;
    }
    return std::move(text_);
  }

 private:
  void character(char c) {
    if (isSpace(c)) {
      space_ = true;
    } else {
      append({&c, 1});
    }
  }

  /// Writes the line breaks and the blank that are due, but none before the first word.
  void append(std::string_view text) {
    if (!text_.empty() && breaks_ > 0) {
      text_.append(breaks_, '\n');
    } else if (space_ && !text_.empty() && !text_.ends_with(' ')) {
      text_ += ' ';
    }
    breaks_ = 0;
    space_ = false;
    text_ += text;
  }

  void breakLine(std::size_t breaks) { breaks_ = std::max(breaks_, breaks); }

  bool reference() {
    constexpr std::size_t longest = 10;
    const auto name = html_.substr(at_ + 1, longest);
    const auto end = name.find(';');
    if (end == std::string_view::npos) return false;
    const auto text = referenced(name.substr(0, end));
    if (!text) return false;
    if (*text == " ") {
      space_ = true;
    } else {
      append(*text);
    }
    at_ += end + 2;
    return true;
  }

  bool tag() {
    const auto rest = html_.substr(at_);
    if (rest.starts_with("<!--")) {
      skipPast("-->");
      return true;
    }
    const auto nameAt = rest.starts_with("</") ? 2U : 1U;
    std::string name;
    for (std::size_t i = nameAt; i < rest.size() && name.size() < 12; ++i) {
      const char c = lower(rest[i]);
      if (!((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '!' || c == '?')) break;
      name += c;
    }
    if (name.empty()) return false;  // a plain less-than sign
    skipPast(">");
    if (nameAt == 1 && isOneOf(name, {"script", "style", "head", "title", "template"})) {
      skipPast("</" + name);
      skipPast(">");
    }
    shape(name, nameAt == 1);
    return true;
  }

  void shape(std::string_view name, bool opens) {
    if (isOneOf(name,
                {"p", "h1", "h2", "h3", "h4", "h5", "h6", "ul", "ol", "table", "pre", "blockquote", "hr"})) {
      breakLine(2);
    } else if (isOneOf(name, {"div", "section", "article", "tr", "dt", "dd", "body"})) {
      breakLine(1);
    } else if (name == "br") {
      breaks_ = std::min<std::size_t>(breaks_ + 1, 2);
    } else if (name == "td" || name == "th") {
      space_ = true;
    } else if (name == "li") {
      breakLine(1);
      if (opens) {
        append("•");
        space_ = true;
      }
    }
  }

  void skipPast(std::string_view mark) {
    const auto lowered = [&](std::size_t from) {
      return std::ranges::equal(html_.substr(from, mark.size()), mark, {}, lower, lower);
    };
    while (at_ < html_.size() && !lowered(at_)) ++at_;
    at_ = std::min(at_ + mark.size(), html_.size());
  }

  std::string_view html_;
  std::size_t at_ = 0;
  std::string text_;
  std::size_t breaks_ = 0;
  bool space_ = false;
};

}  // namespace

std::string plainNotes(std::string_view html) {
  return Reducer(html).run();
}

}  // namespace keyvora::appcast
