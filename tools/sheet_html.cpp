#include "tools/embedded.h"
#include "tools/letters.h"
#include "tools/sheet.h"

namespace keyvora::tools {
namespace {

std::string escaped(std::string_view text) {
  std::string result;
  for (const char c : text) {
    switch (c) {
      case '&':
        result += "&amp;";
        break;
      case '<':
        result += "&lt;";
        break;
      case '>':
        result += "&gt;";
        break;
      case '"':
        result += "&quot;";
        break;
      default:
        result += c;
    }
  }
  return result;
}

std::string keycaps(const std::vector<std::string>& letters) {
  std::string html;
  for (const auto& letter : letters) html += "<kbd>" + escaped(letter) + "</kbd>";
  return html;
}

std::string row(const SheetRow& row) {
  const std::string mark = row.kind == "keytips" ? " <i class=\"tips\">◆</i>" : "";
  return "<li title=\"" + escaped(row.kind + ": " + row.summary) + "\"><span>" + keycaps(row.letters) +
         "</span><b>" + escaped(row.name) + mark + "</b></li>\n";
}

/// A column break never separates a tab's heading from its first row.
std::string section(const SheetTab& tab) {
  std::string html =
      "<section>\n<h2><kbd>" + escaped(tab.letter) + "</kbd> " + escaped(tab.name) + "</h2>\n<ul>\n";
  for (const auto& each : tab.rows) html += row(each);
  return html + "</ul>\n</section>\n";
}

bool needsKeyTips(const std::vector<SheetTab>& sheet) {
  for (const auto& tab : sheet) {
    for (const auto& each : tab.rows) {
      if (each.kind == "keytips") return true;
    }
  }
  return false;
}

}  // namespace

std::string asHtml(const std::vector<SheetTab>& sheet) {
  std::string html =
      "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
      "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
      "<title>Key sequences</title>\n<style>\n";
  html += embedded::cheatsheetStyle;
  html +=
      "</style>\n</head>\n<body>\n<header>\n<h1>Key sequences</h1>\n"
      "<p>Tap <kbd>⌥</kbd> Option (Alt on a PC keyboard) by itself, then type the letters. <kbd>esc</kbd> or "
      "<kbd>⌥</kbd> again "
      "cancels.</p>\n";
  if (needsKeyTips(sheet)) html += "<p><i class=\"tips\">◆</i> needs Excel’s key tips switched on.</p>\n";
  html += "</header>\n<main>\n";
  for (const auto& tab : sheet) html += section(tab);
  return html + "</main>\n</body>\n</html>\n";
}

}  // namespace keyvora::tools
