#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/document.h"
#include "tools/shipped.h"

namespace keyvora::tools {

/// What a shipped document has for a user's.
struct Change {
  enum class Kind {
    /// Came after the user's document did, and the user has nothing with its letters.
    added,
    /// The user has it as it came once; it is different now.
    mended,
    /// The user has another one with its letters, which is never touched.
    kept,
  };
  Kind kind;
  std::string letters;
  /// The shipped one's.
  std::string name;
};

struct Update {
  std::vector<Change> changes;
  /// The user's document with the changes, as text: whatever they do not concern is as it was.
  std::string bytes;

  /// Whether it differs from the user's.
  [[nodiscard]] bool bringsAnything() const;
};

/// An entry as a document has it, from its first brace to its last. `text` is the document in UTF-8 without a
/// byte-order mark.
std::string_view writtenIn(const Entry& entry, std::string_view text);

/// The shipped document of whose entries, now and before, the user's has the most; none when it has none.
const ShippedDocument* originOf(const Document& document);

/// Brings what is new and mended in a shipped document into a user's. Both load. None when the user's is not
/// in UTF-8. An entry that was there when the user's document came and is no more was taken out by the user,
/// and stays out.
std::optional<Update> update(const Document& document, std::string_view bytes,
                             const ShippedDocument& shipped);

}  // namespace keyvora::tools
