#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

/// The names that target programs use for their menus and commands, as far as they are known: data files of
/// the project.
namespace keyvora::tools {

/// Words in the order of the file. Lookups are case-sensitive.
class KnownWords {
 public:
  explicit KnownWords(std::vector<std::string_view> words);

  [[nodiscard]] bool contains(std::string_view word) const;

  /// The known word that was most likely meant by this one; none when it is known itself, or when no known
  /// word is similar. The cost grows with the number of words of similar length.
  [[nodiscard]] std::optional<std::string_view> meantBy(std::string_view word) const;

 private:
  /// How often each letter occurs in a word, case ignored; all other characters count as one more letter.
  using Letters = std::array<std::uint8_t, 27>;

  static Letters lettersOf(std::string_view word);

  std::vector<std::string_view> sorted_;
  std::vector<Letters> letters_;
};

/// Titles of menus and their items in Excel for Mac, LibreOffice Calc and Gnumeric.
const KnownWords& menuTitles();

/// Words of AppleScript and of Excel's script dictionary, in lower case.
const KnownWords& scriptWords();

}  // namespace keyvora::tools
