#include "hosts/x11/diagnosis/facts.h"

#include <X11/XKBlib.h>
#include <X11/Xatom.h>
#include <glib.h>

#include <array>
#include <fstream>
#include <iterator>
#include <memory>

#include "hosts/x11/diagnosis/window_manager.h"
#include "hosts/x11/gobject.h"
#include "hosts/x11/instance.h"
#include "hosts/x11/keyboard/key_map.h"
#include "text/utf8.h"

namespace keyvora::x11 {
namespace {

constexpr long longestNames = 1024;  // in units of four bytes

struct FreeData {
  void operator()(unsigned char* data) const { XFree(data); }
};

/// The strings in the root window's list of layout rules, set by the tools that set the layout.
std::vector<std::string> rulesNames(Connection& connection) {
  Atom type = None;
  int format = 0;
  unsigned long length = 0;
  unsigned long left = 0;
  unsigned char* raw = nullptr;
  XGetWindowProperty(connection.get(), connection.root(), connection.atom("_XKB_RULES_NAMES"), 0,
                     longestNames, False, XA_STRING, &type, &format, &length, &left, &raw);
  const std::unique_ptr<unsigned char, FreeData> data(raw);
  std::vector<std::string> names(1);
  if (type != XA_STRING || format != 8 || !data) return names;
  for (unsigned long i = 0; i < length; ++i) {
    if (data.get()[i] == 0) {
      names.emplace_back();
    } else {
      names.back() += static_cast<char>(data.get()[i]);
    }
  }
  return names;
}

std::string optionKeys(Connection& connection) {
  std::string keys;
  const KeyMap map(connection.get());
  for (const KeyCode keycode : map.optionKeycodes()) {
    const char* symbol = XKeysymToString(XkbKeycodeToKeysym(connection.get(), keycode, 0, 0));
    keys += (keys.empty() ? "" : ", ") + std::string(symbol == nullptr ? "key" : symbol) + " (" +
            std::to_string(keycode) + ")";
  }
  return keys.empty() ? "none: no key makes Alt or Meta" : keys;
}

std::string commandOf(platform::ProcessIdentifier process) {
  std::string name;
  std::getline(std::ifstream("/proc/" + std::to_string(process) + "/comm"), name);
  return text::validText(name);
}

}  // namespace

std::string chosenLayout(Connection& connection) {
  auto names = rulesNames(connection);
  constexpr std::size_t layout = 2, variant = 3, options = 4;
  names.resize(std::max(names.size(), options + 1));
  std::string chosen = names[layout];
  if (!names[variant].empty()) chosen += ", variant " + names[variant];
  if (!names[options].empty()) chosen += ", options " + names[options];
  return text::validText(chosen);
}

std::string languageOf(platform::ProcessIdentifier process) {
  std::ifstream file("/proc/" + std::to_string(process) + "/environ", std::ios::binary);
  if (!file) return {};
  std::array<std::string, 4> found;
  constexpr std::array names{"LC_ALL=", "LC_MESSAGES=", "LANG=", "LANGUAGE="};
  for (std::string setting; std::getline(file, setting, '\0');) {
    for (std::size_t i = 0; i < names.size(); ++i) {
      if (setting.starts_with(names[i])) found[i] = setting.substr(std::string_view(names[i]).size());
    }
  }
  std::string locale = "C";
  for (std::size_t i = 3; i-- > 0;) {
    if (!found[i].empty()) locale = found[i];
  }
  const bool isTranslated = locale != "C" && locale != "POSIX" && !locale.starts_with("C.");
  return text::validText(isTranslated && !found[3].empty() ? found[3] : locale);
}

std::vector<platform::Fact> displayFacts(Connection& connection) {
  Display* display = connection.get();
  const auto layout = chosenLayout(connection);
  return {{"keyvora", Instance::isClaimed(connection) ? "is running" : "is not running"},
          {"display", std::string(DisplayString(display)) + ", " + ServerVendor(display) + " " +
                          std::to_string(VendorRelease(display))},
          {"window manager", windowManager(display).value_or("none")},
          {"keyboard layout", layout.empty() ? "not said" : layout},
          {"Option keys", optionKeys(connection)}};
}

std::vector<platform::Fact> programFacts(Applications& applications, std::string_view target) {
  const GText script(g_find_program_in_path("osascript"));
  std::vector<platform::Fact> facts{
      {"osascript", script ? script.get() : "none: actions of the kind applescript do not work"}};
  const auto processes = applications.running(target);
  if (processes.empty()) facts.push_back({"spreadsheet", "none is running"});
  for (const auto process : processes) {
    const auto language = languageOf(process);
    facts.push_back({"spreadsheet", commandOf(process) + ", process " + std::to_string(process) +
                                        ", language " + (language.empty() ? "unknown" : language)});
  }
  return facts;
}

}  // namespace keyvora::x11
