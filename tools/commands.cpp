#include "tools/commands.h"

#include <cstddef>
#include <limits>
#include <vector>

namespace keyvora::tools {

std::span<const Command> commands() {
  static const std::vector<Command> all{
      {"check",
       "[FILE ...] [--layout NAME[,NAME...]] [--watch] [--strict] [--json]",
       "Say everything that is wrong with mapping documents, or surprising.",
       "  --layout NAME  warn of what is typed differently on another keyboard layout than US: fr, ch(fr)\n"
       "  --watch        check again at every save, until interrupted\n"
       "  --strict       let warnings count as errors\n"
       "  --json         for programs: one JSON object on a line for each check\n"
       "Errors are what keeps the document from loading; warnings load and may surprise. On a terminal each\n"
       "comes with its line of the document, in colours unless NO_COLOR is set. Elsewhere silent when there "
       "is\n"
       "nothing to say.\n"
       "Exit status: 0 without errors, 1 with errors, 2 when a file cannot be read or there is no such "
       "layout.\n",
       {{"--watch", "--strict", "--json"}, {"--layout"}, 0, std::numeric_limits<std::size_t>::max()},
       checkCommand},
      {"explain",
       "LETTERS [FILE]",
       "Say what typing these letters after a tap of Option does, step by step.",
       "Where letters may follow, each is named with what it leads to.\n"
       "Exit status: 0 when a sequence fires, 1 when none does, 2 when the document does not load.\n",
       {{}, {}, 1, 2},
       explainCommand},
      {"list",
       "[FILE] [--tab LETTERS]",
       "List the sequences that can fire: keys, name, kind and action.",
       "  --tab LETTERS  only those that start with these letters\n",
       {{}, {"--tab"}, 0, 1},
       listCommand},
      {"cheatsheet",
       "[FILE] [--html | --markdown | --open]",
       "Write a sheet of all sequences by tab, to print and pin up.",
       "  --html      one file for the browser and the printer; the default\n"
       "  --markdown  tables\n"
       "  --open      open it in the browser, from a temporary file\n",
       {{"--html", "--markdown", "--open"}, {}, 0, 1},
       cheatsheetCommand},
      {"rehearse",
       "[FILE] [--all]",
       "Hold every action against the spreadsheet that runs, without carrying any out.",
       "  --all  say what was found for every sequence, not only what is missing\n"
       "Each menu path must be in the program's menus, each script must compile (osacompile, on a Mac). A "
       "key\n"
       "is looked for among the shortcuts that the menus show; not to be there is no fault.\n"
       "Exit status: 0 when nothing is missing, 1 when something is, 2 without a program to ask.\n",
       {{"--all"}, {}, 0, 1},
       rehearseCommand},
      {"use",
       "calc | gnumeric | excel",
       "Put a document that comes with keyvora in place of yours, with a backup.",
       "Exit status: 0 when it is there, 2 when it could not be put there.\n",
       {{}, {}, 1, 1},
       useCommand},
      {"diff",
       "[FILE] [--from NAME]",
       "Say what is new and mended in keyvora's document since yours came.",
       "  --from NAME  compare with the document for calc, gnumeric or excel, and not with the likeliest\n"
       "new: update brings it. mended: you have it as it came once, and update brings it as it is now.\n"
       "yours: you changed it, and it stays.\n"
       "Exit status: 0 when there is nothing new or mended, 1 when there is, 2 when it cannot be said.\n",
       {{}, {"--from"}, 0, 1},
       diffCommand},
      {"update",
       "[FILE] [--from NAME]",
       "Bring what diff says into your document, with a backup.",
       "  --from NAME  compare with the document for calc, gnumeric or excel, and not with the likeliest\n"
       "Order, layout, fields of your own and line ends stay. What you took out stays out.\n"
       "Exit status: 0 when it is done, 2 when it could not be.\n",
       {{}, {"--from"}, 0, 1},
       updateCommand},
      {"habits",
       "[FILE] [--log LOG]",
       "Say from keyvora's log what you fire most, and what you tried in vain.",
       "  --log LOG  read this log and not ~/Library/Logs/keyvora.log\n"
       "Letters that led nowhere come with the sequence that was meant, or an entry to paste.\n",
       {{}, {"--log"}, 0, 1},
       habitsCommand},
      {"doctor",
       "",
       "Say what keeps sequences from working on this machine, and what stands behind it.",
       "Looks at the desktop, the keyboard, the spreadsheet and your mapping document, and changes nothing.\n"
       "Exit status: 0 when nothing that is known keeps sequences from working, else 1.\n",
       {},
       doctorCommand},
      {"schema", "", "Write the JSON schema of mapping documents, for editors.", "", {}, schemaCommand},
  };
  return all;
}

}  // namespace keyvora::tools
