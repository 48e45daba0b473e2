#include "tools/sheet.h"

#include <algorithm>
#include <map>

#include "text/text.h"
#include "tools/letters.h"
#include "tools/wording.h"

namespace keyvora::tools {
namespace {

std::string padded(const std::string& text, std::size_t width) {
  const auto used = text::characters(text).size();
  return text + std::string(width > used ? width - used : 0, ' ');
}

}  // namespace

std::vector<SheetTab> sheetOf(const Mapping& mapping) {
  std::map<std::vector<std::string>, const Sequence*> firing;
  for (const auto& sequence : mapping.sequences) firing[sequence.letters()] = &sequence;
  std::vector<SheetTab> tabs;
  for (const auto& sequence : mapping.sequences) {
    auto letters = sequence.letters();
    if (letters.empty() || firstUntypable(letters) || firing.at(letters) != &sequence) continue;
    auto tab = std::ranges::find(tabs, letters.front(), &SheetTab::letter);
    if (tab == tabs.end()) {
      tab = tabs.insert(tabs.end(), {letters.front(), tabOf(sequence, mapping).value_or(""), {}});
    }
    tab->rows.push_back(
        {std::move(letters), sequence.name, summary(sequence.action), std::string(kindOf(sequence.action))});
  }
  return tabs;
}

void keepStartingWith(std::vector<SheetTab>& sheet, const std::vector<std::string>& prefix) {
  for (auto& tab : sheet) {
    std::erase_if(tab.rows, [&](const SheetRow& row) {
      return row.letters.size() < prefix.size() ||
             !std::equal(prefix.begin(), prefix.end(), row.letters.begin());
    });
  }
  std::erase_if(sheet, [](const SheetTab& tab) { return tab.rows.empty(); });
}

std::string asTable(const std::vector<SheetTab>& sheet) {
  std::size_t keysWidth = 0;
  std::size_t nameWidth = 0;
  for (const auto& tab : sheet) {
    for (const auto& row : tab.rows) {
      keysWidth = std::max(keysWidth, row.letters.size());
      nameWidth = std::max(nameWidth, text::characters(row.name).size());
    }
  }
  constexpr std::size_t kindWidth = 11;  // "applescript"
  std::string table;
  for (const auto& tab : sheet) {
    for (const auto& row : tab.rows) {
      table += padded(joined(row.letters), keysWidth) + "  " + padded(row.name, nameWidth) + "  " +
               padded(row.kind, kindWidth) + "  " + row.summary + "\n";
    }
  }
  return table;
}

}  // namespace keyvora::tools
