#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

/// What the programs that documents act on call their things, as far as it is known: data files of the
/// project.
namespace keyvora::tools {

/// Words in the order of the file. Lookups take small letters and capitals as they are.
class KnownWords {
 public:
  explicit KnownWords(std::vector<std::string_view> words);

  [[nodiscard]] bool contains(std::string_view word) const;

  /// The known word that someone who wrote this one most likely meant; none when it is known itself, or when
  /// nothing is near. Costs the more the more words are of nearly the same length.
  [[nodiscard]] std::optional<std::string_view> meantBy(std::string_view word) const;

 private:
  /// How often each letter stands in a word, whatever its case; all other characters are one more letter.
  using Letters = std::array<std::uint8_t, 27>;

  static Letters lettersOf(std::string_view word);

  std::vector<std::string_view> sorted_;
  std::vector<Letters> letters_;
};

/// Titles of menus and their items in Excel for Mac, LibreOffice Calc and Gnumeric.
const KnownWords& menuTitles();

/// Words of AppleScript and of Excel's script dictionary, in small letters.
const KnownWords& scriptWords();

}  // namespace keyvora::tools
