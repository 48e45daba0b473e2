#include "appcast/feed.h"

#include <algorithm>
#include <cstddef>
#include <pugixml.hpp>

#include "appcast/address.h"
#include "appcast/feed_element.h"
#include "appcast/limits.h"
#include "appcast/version_order.h"
#include "text/ascii.h"
#include "text/utf8.h"

namespace keyvora::appcast {
namespace {

/// Why a feed is refused; caught in `readFeed`.
struct Malformed {
  std::string why;
};

struct Context {
  const std::string& address;
  std::span<const std::string> languages;
};

bool hasControlCharacter(std::string_view text) {
  return std::ranges::any_of(text, [](char c) { return (c >= 0 && c < ' ') || c == 0x7F; });
}

std::string webAddressOf(const std::string& reference, const Context& context, const char* what) {
  if (reference.empty()) return {};
  if (reference.size() > maxAddressLength) throw Malformed{std::string("the ") + what + " is too long"};
  const auto address = hasControlCharacter(reference) ? std::nullopt : webAddress(reference, context.address);
  if (!address) throw Malformed{std::string("the ") + what + " is not an http or https address"};
  return *address;
}

/// The version that Sparkle takes from a file name such as App_1.2.zip when the item has none: 1.2.
std::string versionInFileName(const std::string& address) {
  const auto underscore = address.rfind('_');
  if (underscore == std::string::npos) return {};
  const std::string name = address.substr(underscore + 1);
  return name.substr(0, name.rfind('.'));
}

void checkVersion(const std::string& version, const char* what) {
  if (version.empty()) throw Malformed{std::string("it has no ") + what};
  if (version.size() > maxVersionLength) throw Malformed{std::string("its ") + what + " is too long"};
  if (hasControlCharacter(version)) throw Malformed{std::string("its ") + what + " has control characters"};
}

bool isChannelName(const std::string& name) {
  return !name.empty() && std::ranges::all_of(name, [](char c) {
    return text::isAsciiLetter(c) || text::isAsciiDigit(c) || c == '.' || c == '_' || c == '-';
  });
}

bool isForThisSystem(const pugi::xml_node& enclosure) {
  const std::string system = trimmed(sparkleAttribute(enclosure, "os").value());
  return system.empty() || system == "linux";
}

/// The enclosure for this system; null when the item has none for it.
struct Enclosure {
  pugi::xml_node element;
  /// The item has enclosures, but none for this system.
  bool isElsewhere = false;
};

Enclosure enclosureOf(const pugi::xml_node& item) {
  Enclosure result;
  for (const auto& element : item.children("enclosure")) {
    if (isForThisSystem(element)) return {element, false};
    result.isElsewhere = true;
  }
  return result;
}

/// The notes, if they are short enough and can be shown without rendering. They are HTML unless the feed
/// says otherwise; HTML without a tag or a character reference is the same as plain text.
std::string notesOf(const pugi::xml_node& description) {
  auto notes = text(description);
  if (notes.size() > maxNotesLength) return {};
  const std::string_view format = sparkleAttribute(description, "format").value();
  const bool isHtml = format.empty() || format == "html";
  if (isHtml && notes.find_first_of("<&") != std::string::npos) return {};
  return notes;
}

FeedItem readItem(const pugi::xml_node& element, const pugi::xml_node& enclosure, const Context& context) {
  const auto sparkle = [&](const char* name) { return text(sparkleChild(element, name, context.languages)); };
  const auto plain = [&](const char* name) { return plainChild(element, name, context.languages); };
  // Both versions may be attributes of the enclosure or elements of their own.
  const auto versionNamed = [&](const char* name) {
    const std::string attribute = trimmed(sparkleAttribute(enclosure, name).value());
    return attribute.empty() ? sparkle(name) : attribute;
  };

  FeedItem item;
  item.downloadAddress =
      webAddressOf(trimmed(enclosure.attribute("url").value()), context, "address of its enclosure");
  if (enclosure && item.downloadAddress.empty()) throw Malformed{"its enclosure has no address"};
  item.pageAddress = webAddressOf(text(plain("link")), context, "link");
  item.notesAddress = webAddressOf(sparkle("releaseNotesLink"), context, "address of its release notes");

  item.version = versionNamed("version");
  if (item.version.empty()) item.version = versionInFileName(item.downloadAddress);
  checkVersion(item.version, "version");
  item.displayVersion = versionNamed("shortVersionString");
  if (item.displayVersion.empty()) item.displayVersion = item.version;
  checkVersion(item.displayVersion, "short version");

  item.notes = notesOf(plain("description"));
  for (const auto* field : {&item.version, &item.displayVersion, &item.notes}) {
    if (!text::isWellFormed(*field)) throw Malformed{"it has text that is not UTF-8"};
  }
  return item;
}

pugi::xml_node channelOf(const pugi::xml_document& document) {
  for (const auto& node : document.children()) {
    if (node.type() == pugi::node_doctype) throw Malformed{"it declares a document type"};
  }
  const auto channel = document.child("rss").child("channel");
  if (!channel) throw Malformed{"it is not an RSS channel"};
  return channel;
}

/// How many children an item has; stops counting beyond the limit.
std::size_t childrenOf(const pugi::xml_node& item) {
  std::size_t count = 0;
  for ([[maybe_unused]] const auto& child : item.children()) {
    if (++count > maxChildren)
      throw Malformed{"it has more than " + std::to_string(maxChildren) + " elements"};
  }
  return count;
}

std::vector<FeedItem> readItems(const pugi::xml_node& channel, const Context& context) {
  std::vector<FeedItem> items;
  std::size_t number = 0;
  std::size_t children = 0;
  for (const auto& element : channel.children("item")) {
    if (++number > maxItems) throw Malformed{"it has more than " + std::to_string(maxItems) + " items"};
    try {
      children += childrenOf(element);
      if (children > maxAllChildren) {
        throw Malformed{"the items up to here have more than " + std::to_string(maxAllChildren) +
                        " elements"};
      }
      const auto enclosure = enclosureOf(element);
      if (enclosure.isElsewhere || sparkleAttribute(enclosure.element, "deltaFrom")) continue;
      auto item = readItem(element, enclosure.element, context);
      const auto channelName = sparkleChild(element, "channel", context.languages);
      if (!isChannelName(text(channelName))) items.push_back(std::move(item));
    } catch (const Malformed& malformed) {
      throw Malformed{"item " + std::to_string(number) + ": " + malformed.why};
    }
  }
  return items;
}

}  // namespace

Feed readFeed(std::string_view bytes, const std::string& address, std::span<const std::string> languages) {
  Feed feed;
  try {
    if (bytes.size() > maxFeedBytes) {
      throw Malformed{"it is larger than " + std::to_string(maxFeedBytes) + " bytes"};
    }
    if (address.size() > maxAddressLength) throw Malformed{"its address is too long"};
    pugi::xml_document document;
    const auto parsed =
        document.load_buffer(bytes.data(), bytes.size(), pugi::parse_default | pugi::parse_doctype);
    if (!parsed) throw Malformed{std::string("it is not XML: ") + parsed.description()};
    feed.items = readItems(channelOf(document), {address, languages});
  } catch (const Malformed& malformed) {
    feed.error = malformed.why;
  }
  return feed;
}

const FeedItem* newestUpdate(const Feed& feed, std::string_view currentVersion) {
  const FeedItem* best = nullptr;
  for (const auto& item : feed.items) {
    if (best == nullptr || compareVersions(item.version, best->version) > 0) best = &item;
  }
  return best != nullptr && compareVersions(best->version, currentVersion) > 0 ? best : nullptr;
}

}  // namespace keyvora::appcast
