#include <map>
#include <set>
#include <string>

#include "mapping/document_keys.h"
#include "tools/apple_script.h"
#include "tools/known_words.h"
#include "tools/rules/elements.h"
#include "tools/rules/rules.h"
#include "tools/spelling.h"
#include "tools/wording.h"

namespace keyvora::tools::rule {
namespace {

/// Shorter words resemble too many others.
constexpr std::size_t shortestWord = 4;

bool isLetter(char c) {
  return c >= 'a' && c <= 'z';
}

std::vector<std::string> wordsOf(const std::string& code) {
  std::vector<std::string> words;
  std::string word;
  for (const char c : code + " ") {
    if (isLetter(c) || (!word.empty() && ((c >= '0' && c <= '9') || c == '_' || c == '\''))) {
      word += c;
    } else if (!word.empty()) {
      words.push_back(std::move(word));
      word.clear();
    }
  }
  return words;
}

/// Names that a script defines: those after set, after a loop's with, after a copy's to, and so on.
std::set<std::string> namesGivenIn(const Statements& script) {
  std::set<std::string> names;
  for (const auto& statement : script.all) {
    const auto words = wordsOf(statement.code);
    if (words.size() < 2) continue;
    if (words[0] == "set" || words[0] == "on" || words[0] == "global" || words[0] == "local") {
      for (std::size_t index = 1; index < words.size() && words[index] != "to"; ++index) {
        // A property is not a name defined by the script: "set bold of font object of selection to true".
        if (index + 1 < words.size() && (words[index + 1] == "of" || words[index + 1] == "object")) break;
        names.insert(words[index]);
      }
    }
    if (words[0] == "repeat" && words[1] == "with" && words.size() > 2) names.insert(words[2]);
    if (words[0] == "copy") names.insert(words.back());
  }
  return names;
}

std::string plainly(const std::string& word) {
  return word.size() > 1 && word.back() == 's' ? word.substr(0, word.size() - 1) : word;
}

bool isKnown(const std::string& word) {
  const auto& known = scriptWords();
  return known.contains(word) || known.contains(plainly(word)) || known.contains(word + "s");
}

/// Whether a statement opens a dialog, by its first words.
bool opensDialog(const std::string& code, bool hasDialogs) {
  for (const auto* start : {"display dialog", "display alert", "choose ", "function wizard "}) {
    if (code.starts_with(start)) return true;
  }
  if (!code.starts_with("show ") || !hasDialogs) return false;
  for (const auto* other :
       {"show all ", "show precedents", "show dependents", "show errors", "show levels"}) {
    if (code.starts_with(other)) return false;
  }
  return true;
}

/// The first statement that waits for a dialog.
const Statement* firstThatWaits(const Statements& script) {
  bool hasDialogs = false;
  for (const auto& statement : script.all) {
    hasDialogs = hasDialogs || statement.code.find("dialog") != std::string::npos;
  }
  bool isIgnoring = false;
  for (const auto& statement : script.all) {
    if (statement.code.starts_with("ignoring application responses")) isIgnoring = true;
    if (statement.code.starts_with("end ignoring")) isIgnoring = false;
    if (!isIgnoring && opensDialog(statement.code, hasDialogs)) return &statement;
  }
  return nullptr;
}

}  // namespace

void unknownTitles(const Document& document, std::string_view name, Findings& findings) {
  std::map<std::string, std::optional<std::string_view>, std::less<>> seen;
  for (const auto& entry : document.entries()) {
    if (!std::holds_alternative<action::Menu>(entry.sequence.action)) continue;
    for (const auto& [title, path] : elementsOf(entry, key::path)) {
      const auto [found, isNew] = seen.try_emplace(std::string(title.text()));
      if (isNew) found->second = tools::menuTitles().meantBy(found->first);
      // Blanks at the ends are reported by another rule.
      if (!found->second || *found->second == trimmed(title.text())) continue;
      warn(findings, name, title, path,
           "no menu is known to have the title " + inQuotes(title.text()) + "; did you mean " +
               inQuotes(*found->second) + "?");
    }
  }
}

void misspeltTerms(const Document& document, std::string_view name, Findings& findings) {
  std::map<std::string, std::optional<std::string_view>> seen;
  for (const auto& entry : document.entries()) {
    const auto* action = std::get_if<action::AppleScript>(&entry.sequence.action);
    if (action == nullptr) continue;
    const auto script = statementsOf(action->script);
    const auto own = namesGivenIn(script);
    for (const auto& statement : script.all) {
      for (const auto& word : wordsOf(statement.code)) {
        if (word.size() < shortestWord || own.contains(word) || isKnown(word)) continue;
        const auto [found, isNew] = seen.try_emplace(word);
        if (isNew) found->second = scriptWords().meantBy(word);
        // People rarely mistype the first letter, and words that differ in it are usually other words.
        if (!found->second || found->second->front() != word.front()) continue;
        warn(findings, name, entry.actionValue(key::script), entry.actionPath(key::script),
             "line " + std::to_string(statement.line) + " of the script has " + inQuotes(word) +
                 ", which is not known as a term of Excel's; did you mean " + inQuotes(*found->second) + "?");
      }
    }
  }
}

void waitingScripts(const Document& document, std::string_view name, Findings& findings) {
  for (const auto& entry : document.entries()) {
    const auto* action = std::get_if<action::AppleScript>(&entry.sequence.action);
    if (action == nullptr) continue;
    const auto script = statementsOf(action->script);
    const auto* waiting = firstThatWaits(script);
    if (waiting == nullptr) continue;
    warn(findings, name, entry.actionValue(key::script), entry.actionPath(key::script),
         "line " + std::to_string(waiting->line) +
             " of the script opens a dialog, and keys wait until it closes; put it between \"ignoring "
             "application "
             "responses\" and \"end ignoring\", or use a keystroke or menu action");
  }
}

}  // namespace keyvora::tools::rule
