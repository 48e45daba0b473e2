#include "mapping/mapping.h"

#include <algorithm>

#include "text/text.h"

namespace keyvora {
namespace {

bool equal(const std::vector<std::string>& a, const std::vector<std::string>& b) {
  return std::ranges::equal(a, b, text::equal);
}

bool equal(const std::optional<std::vector<std::string>>& a,
           const std::optional<std::vector<std::string>>& b) {
  return a && b ? equal(*a, *b) : a.has_value() == b.has_value();
}

}  // namespace

namespace action {

bool operator==(const AppleScript& a, const AppleScript& b) {
  return text::equal(a.script, b.script);
}

bool operator==(const Keystroke& a, const Keystroke& b) {
  return text::equal(a.key, b.key) && equal(a.modifiers, b.modifiers);
}

bool operator==(const KeyTips& a, const KeyTips& b) {
  return text::equal(a.keys, b.keys);
}

bool operator==(const Menu& a, const Menu& b) {
  return equal(a.path, b.path);
}

}  // namespace action

bool operator==(const Sequence& a, const Sequence& b) {
  return text::equal(a.keys, b.keys) && text::equal(a.name, b.name) && a.action == b.action;
}

std::chrono::milliseconds Mapping::timeout() const {
  return timeoutMilliseconds ? std::chrono::milliseconds(*timeoutMilliseconds) : defaultTimeout;
}

bool KeyOrder::operator()(std::string_view a, std::string_view b) const {
  if (text::isAscii(a) && text::isAscii(b)) return a < b;
  return text::canonical(a) < text::canonical(b);
}

bool operator==(const Mapping& a, const Mapping& b) {
  const auto sameTab = [](const auto& tab, const auto& other) {
    return text::equal(tab.first, other.first) && text::equal(tab.second, other.second);
  };
  return a.version == b.version && equal(a.notes, b.notes) &&
         a.timeoutMilliseconds == b.timeoutMilliseconds && std::ranges::equal(a.tabs, b.tabs, sameTab) &&
         a.sequences == b.sequences;
}

}  // namespace keyvora
