#include "tools/apple_script.h"
#include "text/ascii.h"

#include <algorithm>
#include <array>
#include <sstream>
#include <utility>

namespace keyvora::tools {
namespace {

constexpr std::string_view continuation = "\u00AC";

/// The words in lower case, separated by single blanks.
std::string normalised(const std::string& code) {
  std::string result;
  std::istringstream words(code);
  for (std::string word; words >> word;) {
    if (!result.empty()) result += ' ';
    for (const char c : word) result += text::asciiLower(c);
  }
  return result;
}

/// Cuts a script into statements, in one pass.
class Cutter {
 public:
  explicit Cutter(std::string_view script) : rest_(script) {}

  Statements cut() {
    while (!rest_.empty()) step();
    finish();
    return std::move(result_);
  }

 private:
  bool at(std::string_view token) const { return rest_.starts_with(token); }

  void take(std::size_t count) {
    for (const char c : rest_.substr(0, count)) line_ += c == '\n' ? 1 : 0;
    rest_.remove_prefix(std::min(count, rest_.size()));
  }

  void step() {
    if (at("\"")) return text();
    if (at("(*")) return comment();
    if (at("--") || at("#")) return take(std::min(rest_.find_first_of("\r\n"), rest_.size()));
    if (at(continuation)) return continueLine();
    if (at("\n") || at("\r")) {
      finish();
      take(1);
      return;
    }
    add(rest_.substr(0, 1), rest_.substr(0, 1));
    take(1);
  }

  void add(std::string_view written, std::string_view code) {
    if (written_.empty()) startLine_ = line_;
    written_ += written;
    code_ += code;
  }

  void text() {
    const std::size_t began = line_;
    std::size_t end = 1;
    while (end < rest_.size() && rest_[end] != '"') end += rest_[end] == '\\' ? 2 : 1;
    const bool closed = end < rest_.size();
    if (!closed && result_.open.empty()) {
      result_.open = "text";
      result_.openLine = began;
    }
    const std::size_t size = closed ? end + 1 : rest_.size();
    add(rest_.substr(0, size), "\"\"");
    take(size);
  }

  void comment() {
    const std::size_t began = line_;
    std::size_t depth = 0;
    do {
      if (rest_.empty()) {
        result_.open = "comment";
        result_.openLine = began;
        return;
      }
      const bool opens = at("(*");
      const bool closes = at("*)");
      depth += opens ? 1U : 0U;
      depth -= closes ? 1U : 0U;
      take(opens || closes ? 2 : 1);
    } while (depth > 0);
    add(" ", " ");
  }

  void continueLine() {
    take(continuation.size());
    const auto end = rest_.find('\n');
    take(end == std::string_view::npos ? rest_.size() : end + 1);
    add(" ", " ");
  }

  void finish() {
    auto code = normalised(code_);
    if (!code.empty()) result_.all.push_back({startLine_, std::move(written_), std::move(code)});
    written_.clear();
    code_.clear();
  }

  std::string_view rest_;
  std::size_t line_ = 1;
  std::size_t startLine_ = 1;
  std::string written_;
  std::string code_;
  Statements result_;
};

bool startsWithWords(std::string_view code, std::string_view words) {
  return code == words || (code.starts_with(words) && code[words.size()] == ' ');
}

/// The kind of block that a statement opens: the word that its end must name; empty when it opens none.
std::string_view opens(std::string_view code) {
  constexpr std::array always{std::string_view("repeat"), std::string_view("try"),
                              std::string_view("considering"), std::string_view("ignoring"),
                              std::string_view("script")};
  for (const auto word : always) {
    if (startsWithWords(code, word)) return word;
  }
  if (startsWithWords(code, "with timeout")) return "timeout";
  if (startsWithWords(code, "with transaction")) return "transaction";
  if (startsWithWords(code, "using terms from")) return "using terms from";
  if (startsWithWords(code, "tell")) return code.find(" to ") == std::string_view::npos ? "tell" : "";
  if (startsWithWords(code, "if")) return code.find(" then ") == std::string_view::npos ? "if" : "";
  if (startsWithWords(code, "on error")) return {};
  if (startsWithWords(code, "on") || startsWithWords(code, "to")) return "on";
  return {};
}

struct Block {
  std::string_view kind;
  std::size_t line = 0;
};

std::string atLine(std::size_t line) {
  return "line " + std::to_string(line) + " of the script";
}

/// What is wrong with the end of a block; empty when it ends the innermost open block.
std::string endFault(const Statement& end, const std::vector<Block>& open) {
  const std::string quotedEnd = "\"" + end.code + "\"";
  if (open.empty()) return quotedEnd + " in " + atLine(end.line) + " closes nothing; remove it";
  const auto& innermost = open.back();
  const std::string_view closed = end.code == "end" ? innermost.kind : std::string_view(end.code).substr(4);
  if (innermost.kind == closed || innermost.kind == "on") return {};
  return quotedEnd + " in " + atLine(end.line) + " stands where the \"" + std::string(innermost.kind) +
         "\" of line " + std::to_string(innermost.line) + " is still open; close that first with \"end " +
         std::string(innermost.kind) + "\"";
}

}  // namespace

Statements statementsOf(std::string_view script) {
  return Cutter(script).cut();
}

std::string blockFault(std::string_view script) {
  const auto statements = statementsOf(script);
  if (statements.open == "text") {
    return "the quotation mark in " + atLine(statements.openLine) +
           " is never closed; add one, as \\\" in JSON";
  }
  if (statements.open == "comment") {
    return "the comment that begins in " + atLine(statements.openLine) + " is never closed; add \"*)\"";
  }
  std::vector<Block> open;
  for (const auto& statement : statements.all) {
    if (startsWithWords(statement.code, "end")) {
      if (auto fault = endFault(statement, open); !fault.empty()) return fault;
      open.pop_back();
    } else if (const auto kind = opens(statement.code); !kind.empty()) {
      open.push_back({kind, statement.line});
    }
  }
  if (open.empty()) return {};
  const auto kind = std::string(open.back().kind);
  return "the \"" + kind + "\" in " + atLine(open.back().line) + " is never closed; add \"end" +
         (kind == "on" ? "" : " " + kind) + "\"";
}

}  // namespace keyvora::tools
