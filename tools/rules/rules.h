#pragma once

#include <span>
#include <string_view>

#include "tools/document.h"
#include "tools/finding.h"

/// Checks for content that loads but may have an unexpected effect. A rule is a function that examines a
/// whole document and adds its findings. To add a rule, write it and enter it in the table in rules.cpp.
namespace keyvora::tools {

/// A rule's name, for programs that read findings, and its function.
struct Rule {
  std::string_view name;
  void (*apply)(const Document& document, std::string_view name, Findings& findings);
};

/// Every rule.
std::span<const Rule> rules();

namespace rule {

// keys.cpp: the letters of sequences.
void emptyKeys(const Document& document, std::string_view name, Findings& findings);
void untypableLetters(const Document& document, std::string_view name, Findings& findings);

// collisions.cpp: sequences that conflict with each other.
void repeatedSequences(const Document& document, std::string_view name, Findings& findings);
void waitingSequences(const Document& document, std::string_view name, Findings& findings);

// fields.cpp: the members of objects.
void misspeltFields(const Document& document, std::string_view name, Findings& findings);
void repeatedFields(const Document& document, std::string_view name, Findings& findings);

// keystrokes.cpp, key_tips.cpp, menus.cpp, scripts.cpp: actions, by kind.
void unknownKeys(const Document& document, std::string_view name, Findings& findings);
void unknownModifiers(const Document& document, std::string_view name, Findings& findings);
void untypableKeyTips(const Document& document, std::string_view name, Findings& findings);
void spelledKeys(const Document& document, std::string_view name, Findings& findings);
void emptyPaths(const Document& document, std::string_view name, Findings& findings);
void menuTitles(const Document& document, std::string_view name, Findings& findings);
void scriptBlocks(const Document& document, std::string_view name, Findings& findings);
void scriptTells(const Document& document, std::string_view name, Findings& findings);

// excel.cpp: names and behaviour of the target programs.
void unknownTitles(const Document& document, std::string_view name, Findings& findings);
void misspeltTerms(const Document& document, std::string_view name, Findings& findings);
void waitingScripts(const Document& document, std::string_view name, Findings& findings);

// whole.cpp: names and the format's version.
void emptyNames(const Document& document, std::string_view name, Findings& findings);
void otherVersions(const Document& document, std::string_view name, Findings& findings);

// timeout.cpp
void timeouts(const Document& document, std::string_view name, Findings& findings);

}  // namespace rule
}  // namespace keyvora::tools
