#pragma once

#include <span>
#include <string_view>

#include "tools/document.h"
#include "tools/finding.h"

/// What a document may hold that loads and yet would surprise. A rule is one function that looks at a whole
/// document and adds what it finds; to add one, write it and enter it in the table of rules.cpp.
namespace keyvora::tools {

/// A rule's name, for programs that read findings, and what it does.
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

// collisions.cpp: sequences that get in each other's way.
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

// excel.cpp: what the programs that are acted on call their things, and do.
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
