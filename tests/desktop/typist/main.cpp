// keyvora-typist DEVICE: a simulated user. Reads one command per line from standard input, plays it on the
// keyboard DEVICE, and answers each with the line "ok", or "error: " and a reason.
//
//   tap KEYS...      presses and releases each key in turn; "Option+Shift+f" holds the first keys while
//   tapping
//                    the last
//   down KEYS...     presses and holds keys
//   up KEYS...       releases keys
//   burst N KEYS...  `tap KEYS...`, N times, all sent at once
//   pace MS          from now on waits this long after every key of `tap` and `burst`; initially 0

#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "keyboard.h"
#include "physical_keys.h"

namespace {

using keyvora::typist::Keyboard;
using keyvora::typist::PhysicalKeys;

class Typist {
 public:
  Typist(Display* display, const std::string& device) : keys_(display), keyboard_(display, device) {}

  void perform(const std::string& line) {
    std::istringstream words(line);
    std::string verb;
    words >> verb;
    if (verb == "pace") {
      pace_ = std::chrono::milliseconds(number(words));
    } else if (verb == "burst") {
      const auto times = number(words);
      const auto keys = rest(words);
      for (int time = 0; time < times; ++time) tap(keys);
    } else if (verb == "tap") {
      tap(rest(words));
    } else if (verb == "down" || verb == "up") {
      for (const auto& key : rest(words)) {
        keyboard_.key(keys_.code(key), verb == "down");
        pause();
      }
    } else {
      throw std::runtime_error("unknown command " + verb);
    }
    keyboard_.flush();
  }

 private:
  static int number(std::istream& words) {
    int value = 0;
    if (!(words >> value) || value < 0) throw std::runtime_error("a number is missing");
    return value;
  }

  static std::vector<std::string> rest(std::istream& words) {
    std::vector<std::string> keys;
    for (std::string key; words >> key;) keys.push_back(key);
    return keys;
  }

  /// No other client's key may come between a press and its release: between those of Option it would be
  /// Option with that key, which has another meaning in every program.
  void tap(const std::vector<std::string>& keys) {
    for (const auto& key : keys) {
      const auto held = chord(key);
      keyboard_.beginUndisturbed();
      for (const auto code : held) keyboard_.key(code, true);
      for (auto code = held.rbegin(); code != held.rend(); ++code) keyboard_.key(*code, false);
      keyboard_.endUndisturbed();
      pause();
    }
  }

  void pause() {
    if (pace_.count() == 0) return;
    keyboard_.flush();
    std::this_thread::sleep_for(pace_);
  }

  [[nodiscard]] std::vector<KeyCode> chord(const std::string& names) const {
    std::vector<KeyCode> codes;
    std::istringstream parts(names);
    for (std::string name; std::getline(parts, name, '+');) codes.push_back(keys_.code(name));
    return codes;
  }

  PhysicalKeys keys_;
  Keyboard keyboard_;
  std::chrono::milliseconds pace_{0};
};

}  // namespace

int main(int count, char** arguments) {
  if (count != 2) {
    std::fputs("usage: keyvora-typist DEVICE, commands on standard input\n", stderr);
    return EXIT_FAILURE;
  }
  const std::unique_ptr<Display, decltype(&XCloseDisplay)> display(XOpenDisplay(nullptr), &XCloseDisplay);
  int unused = 0;
  if (!display || !XTestQueryExtension(display.get(), &unused, &unused, &unused, &unused)) {
    std::fputs("keyvora-typist: there is no display with the XTEST extension\n", stderr);
    return EXIT_FAILURE;
  }
  try {
    Typist typist(display.get(), arguments[1]);
    std::cout << "ok" << std::endl;
    for (std::string line; std::getline(std::cin, line);) {
      try {
        typist.perform(line);
        std::cout << "ok" << std::endl;
      } catch (const std::exception& error) {
        std::cout << "error: " << error.what() << std::endl;
      }
    }
  } catch (const std::exception& error) {
    std::cout << "error: " << error.what() << std::endl;
    return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
}
