#include "tools/letters.h"
#include "tools/sheet.h"

namespace keyvora::tools {
namespace {

/// The text escaped for Markdown, also inside a table.
std::string escaped(const std::string& text) {
  constexpr std::string_view special = "\\`*_{}[]<>#|~";
  std::string result;
  for (const char c : text) {
    if (special.find(c) != std::string_view::npos) result += '\\';
    result += c == '\n' || c == '\r' ? ' ' : c;
  }
  return result;
}

std::string headline(const SheetTab& tab) {
  return "## " + escaped(tab.letter) + (tab.name.empty() ? "" : " · " + escaped(tab.name));
}

}  // namespace

std::string asMarkdown(const std::vector<SheetTab>& sheet) {
  std::string text =
      "# Key sequences\n\nTap ⌥ Option (Alt on a PC keyboard) by itself, then type the letters.\n";
  bool anyKeyTips = false;
  for (const auto& tab : sheet) {
    text += "\n" + headline(tab) + "\n\n| Keys | |\n|---|---|\n";
    for (const auto& row : tab.rows) {
      const bool isKeyTips = row.kind == "keytips";
      anyKeyTips = anyKeyTips || isKeyTips;
      text += "| **" + escaped(joined(row.letters)) + "** | " + escaped(row.name) + (isKeyTips ? " ◆" : "") +
              " |\n";
    }
  }
  if (anyKeyTips) text += "\n◆ needs Excel's key tips switched on.\n";
  return text;
}

}  // namespace keyvora::tools
