// Any bytes as a feed: it is read completely or refused with a reason, and its texts can be shown safely.

#include "appcast/feed.h"

#include <algorithm>

#include "appcast/address.h"
#include "appcast/version_order.h"
#include "fuzz/input.h"

namespace keyvora::fuzz {
namespace {

bool isOneLine(const std::string& text) {
  return isWellFormed(text) &&
         std::ranges::none_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; });
}

void checkItem(const appcast::FeedItem& item) {
  require(!item.version.empty() && isOneLine(item.version), "a version is a line");
  require(!item.displayVersion.empty() && isOneLine(item.displayVersion), "a version for people is a line");
  require(isWellFormed(item.notes), "notes are text");
  for (const auto* address : {&item.notesAddress, &item.pageAddress, &item.downloadAddress}) {
    require(address->empty() || appcast::webAddress(*address, ""), "addresses are those of the web");
    require(isOneLine(*address), "an address is a line");
  }
}

void check(std::string_view bytes) {
  const std::string languages[] = {"de_AT", "en"};
  const auto feed = appcast::readFeed(bytes, "https://example.org/feeds/appcast.xml", languages);
  if (feed.error) {
    require(!feed.error->empty() && feed.items.empty(), "a feed that fails offers nothing and says why");
    require(isOneLine(*feed.error), "the reason is a line");
  }
  std::ranges::for_each(feed.items, checkItem);
  const auto* newest = appcast::newestUpdate(feed, "1.0");
  if (newest != nullptr) require(appcast::compareVersions(newest->version, "1.0") > 0, "an update is newer");
}

}  // namespace
}  // namespace keyvora::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  keyvora::fuzz::check({reinterpret_cast<const char*>(data), size});
  return 0;
}
