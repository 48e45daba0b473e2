#include "tools/rules/rules.h"

#include <array>

namespace keyvora::tools {

std::span<const Rule> rules() {
  static constexpr std::array table{
      Rule{"empty-keys", rule::emptyKeys},
      Rule{"untypable-letters", rule::untypableLetters},
      Rule{"repeated-sequence", rule::repeatedSequences},
      Rule{"waiting-sequence", rule::waitingSequences},
      Rule{"misspelt-field", rule::misspeltFields},
      Rule{"repeated-field", rule::repeatedFields},
      Rule{"unknown-key", rule::unknownKeys},
      Rule{"unknown-modifier", rule::unknownModifiers},
      Rule{"untypable-key-tips", rule::untypableKeyTips},
      Rule{"spelled-key", rule::spelledKeys},
      Rule{"empty-path", rule::emptyPaths},
      Rule{"menu-title", rule::menuTitles},
      Rule{"script-blocks", rule::scriptBlocks},
      Rule{"script-tell", rule::scriptTells},
      Rule{"unknown-title", rule::unknownTitles},
      Rule{"misspelt-term", rule::misspeltTerms},
      Rule{"waiting-script", rule::waitingScripts},
      Rule{"empty-name", rule::emptyNames},
      Rule{"other-version", rule::otherVersions},
      Rule{"timeout", rule::timeouts},
  };
  return table;
}

}  // namespace keyvora::tools
