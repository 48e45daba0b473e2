#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/document.h"
#include "tools/shipped.h"

namespace keyvora::tools {

/// A difference between a shipped document and a user's.
struct Change {
  enum class Kind {
    /// New since the user's document; the user has no sequence with these letters.
    added,
    /// The user has an earlier shipped version of it.
    mended,
    /// The user has a different sequence with these letters, which is never changed.
    kept,
  };
  Kind kind;
  std::string letters;
  /// The shipped sequence's name.
  std::string name;
};

struct Update {
  std::vector<Change> changes;
  /// The text of the user's document with the changes; everything else is unchanged.
  std::string bytes;

  /// Whether it differs from the user's document.
  [[nodiscard]] bool bringsAnything() const;
};

/// The text of an entry, from its first brace to its last. `text` is the document in UTF-8 without a
/// byte-order mark.
std::string_view writtenIn(const Entry& entry, std::string_view text);

/// The shipped document that shares the most entries, present or former, with the user's; none when it
/// shares none.
const ShippedDocument* originOf(const Document& document);

/// Adds a shipped document's new and changed entries to a user's document. Both must load. None when the
/// user's is not UTF-8. An entry that existed at the user's edition and is missing now was deleted by the
/// user, and is not added again.
std::optional<Update> update(const Document& document, std::string_view bytes,
                             const ShippedDocument& shipped);

}  // namespace keyvora::tools
