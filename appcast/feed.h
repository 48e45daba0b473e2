#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace keyvora::appcast {

/// One update that a feed offers. Texts are valid UTF-8 and trimmed; those of one line have no control
/// characters.
struct FeedItem {
  /// The version by which updates are compared; never empty.
  std::string version;
  /// The version as people write it; never empty.
  std::string displayVersion;
  /// Release notes in the feed itself, as text; empty when there are none, or they are HTML.
  std::string notes;
  /// Absolute http or https addresses; empty when the item has none.
  std::string notesAddress;
  std::string pageAddress;
  std::string downloadAddress;
};

/// The result of reading a feed: its items in the order of the feed, or why it could not be read.
struct Feed {
  std::vector<FeedItem> items;
  std::optional<std::string> error;
};

/// Reads an appcast as Sparkle does, except that the items for this system are those whose enclosure names
/// no operating system or "linux". Items of other systems, items of named channels and deltas are left out.
/// One malformed item fails the feed. A document type fails it too: a feed needs none, and attacks on
/// parsers use it. `address` is where the feed came from: addresses in it are relative to that. `languages`
/// are those that the user reads, the preferred first ("de_AT", "de"); they choose between texts in several
/// languages. Any thread.
Feed readFeed(std::string_view bytes, const std::string& address, std::span<const std::string> languages);

/// The item with the highest version (the first of the feed among equals) if that is newer than
/// `currentVersion`; else null. Any thread.
const FeedItem* newestUpdate(const Feed& feed, std::string_view currentVersion);

}  // namespace keyvora::appcast
