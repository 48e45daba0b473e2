#include "tests/macos/rig/driver/commands.h"

#import <AppKit/AppKit.h>
#include <unistd.h>

#include <cstdlib>
#include <functional>
#include <map>
#include <sstream>
#include <thread>
#include <vector>

#include "tests/macos/rig/driver/main_thread.h"
#include "tests/macos/rig/driver/menu.h"
#include "tests/macos/rig/recorders/accessibility.h"
#include "tests/macos/rig/recorders/desktop.h"
#include "tests/macos/rig/recorders/failures.h"
#include "tests/macos/rig/recorders/login_item.h"
#include "tests/macos/rig/recorders/record.h"
#include "tests/macos/rig/recorders/sparkle.h"
#include "tests/macos/rig/recorders/window_server.h"

namespace keyvora::rig {
namespace {

using Words = std::vector<std::string>;
using Milliseconds = std::chrono::milliseconds;

/// Whether work can be sent to the main thread; before `main` nothing would run it.
bool loopRuns = false;

/// Runs the work on the main thread: through its loop if that runs, else directly.
void onMainIfRunning(const std::function<void()>& work) {
  if (loopRuns) {
    onMain(work);
  } else {
    work();
  }
}

unsigned long number(const std::string& text) { return std::strtoul(text.c_str(), nullptr, 0); }
Milliseconds milliseconds(const std::string& text) { return Milliseconds(number(text)); }

/// Splits at tabs, since words may contain blanks.
Words split(const std::string& line) {
  Words words;
  std::istringstream stream(line);
  for (std::string word; std::getline(stream, word, '\t');) words.push_back(word);
  words.resize(std::max<std::size_t>(words.size(), 4));  // missing words are empty
  return words;
}

std::string key(const Words& words, bool down) {
  switch (WindowServer::shared().press(static_cast<CGKeyCode>(number(words[1])), down, number(words[2]))) {
    case Fate::passed:
      return "passed";
    case Fate::swallowed:
      return "swallowed";
    case Fate::timedOut:
      return "timed out";
  }
}

/// While true, the loop runs as in AppKit with an open menu. `track` returns when that has begun; `untrack`
/// ends it.
std::atomic<bool> tracking = false;
void track() {
  tracking = true;
  onMain(
      [] {
        while (tracking) {
          [NSRunLoop.currentRunLoop runMode:NSEventTrackingRunLoopMode
                                 beforeDate:[NSDate dateWithTimeIntervalSinceNow:0.02]];
        }
      },
      false);
}

void postFromWorkspace(NSString* name) {
  onMain([name] { [NSWorkspace.sharedWorkspace.notificationCenter postNotificationName:name object:nil]; });
}

void addRunning(const Words& words) {
  auto& desktop = Desktop::shared();
  RunningApplication application;
  if (words[1] != "-") application.identifier = words[1];
  application.process = static_cast<pid_t>(number(words[2]));
  desktop.running.push_back(application);
}

std::string answered(const std::function<void()>& work) {
  work();
  return "done";
}

Feed feedOf(const std::string& name) {
  if (name == "update") return Feed::update;
  return name == "nothing" ? Feed::nothing : Feed::unreachable;
}

const std::map<std::string, std::function<std::string(const Words&)>>& commands() {
  using W = const Words&;
  static const auto& table = *new std::map<std::string, std::function<std::string(W)>>{
      {"trust", [](W w) { return answered([&] { WindowServer::shared().setTrusted(w[1] == "yes"); }); }},
      {"limit", [](W w) { return answered([&] { WindowServer::shared().setLimit(milliseconds(w[1])); }); }},
      {"run", [](W w) { return answered([&] { onMainIfRunning([&] { addRunning(w); }); }); }},
      {"quit",
       [](W w) { return answered([&] { onMainIfRunning([] { Desktop::shared().running.clear(); }); }); }},
      {"front",
       [](W w) {
         return answered([&] {
           onMainIfRunning([&] {
             Desktop::shared().front =
                 w[1] == "-" ? std::nullopt : std::optional(static_cast<pid_t>(number(w[1])));
           });
         });
       }},
      {"menuitem",
       [](W w) {
         return answered([&] {
           Words titles(w.begin() + 1, w.end());
           while (!titles.empty() && titles.back().empty()) titles.pop_back();
           onMainIfRunning([&] { MenuTree::shared().add(titles); });
         });
       }},
      {"nomenus", [](W) { return answered([] { onMainIfRunning([] { MenuTree::shared().clear(); }); }); }},
      {"fail", [](W w) { return answered([&] { failFrom(w[1], std::atoi(w[2].c_str())); }); }},
      {"hang", [](W w) { return answered([&] { hangOnce(milliseconds(w[1])); }); }},
      {"login", [](W w) { return answered([&] { setLoginStatus(static_cast<int>(number(w[1]))); }); }},
      {"feed", [](W w) { return answered([&] { setFeed(feedOf(w[1])); }); }},
      {"answer", [](W) { return answered([] { onMain(answerCheck); }); }},
      {"down", [](W w) { return key(w, true); }},
      {"up", [](W w) { return key(w, false); }},
      {"disable",
       [](W w) {
         return answered([&] { WindowServer::shared().disableTap(static_cast<CGEventType>(number(w[1]))); });
       }},
      {"kill", [](W) { return answered([] { WindowServer::shared().killTap(); }); }},
      {"wake", [](W) { return answered([] { postFromWorkspace(NSWorkspaceDidWakeNotification); }); }},
      {"active",
       [](W) { return answered([] { postFromWorkspace(NSWorkspaceSessionDidBecomeActiveNotification); }); }},
      {"unlock",
       [](W) {
         return answered([] {
           onMain([] {
             [NSDistributedNotificationCenter.defaultCenter postNotificationName:@"com.apple.screenIsUnlocked"
                                                                          object:nil];
           });
         });
       }},
      {"track", [](W) { return answered(track); }},
      {"untrack", [](W) { return answered([] { tracking = false; }); }},
      {"title", [](W) { return titleText(); }},
      {"rows", [](W) { return rowsText(); }},
      {"choose", [](W w) { return choose(w[1]); }},
      {"sync", [](W) { return answered([] { onMain([] {}); }); }},
  };
  return table;
}

/// One line from the socket; false at its end.
bool readLine(int socket, std::string& line) {
  line.clear();
  for (char unit = 0; ::read(socket, &unit, 1) == 1;) {
    if (unit == '\n') return true;
    line += unit;
  }
  return false;
}

void play(int socket, bool untilGo) {
  for (std::string line; readLine(socket, line);) {
    const bool go = line == "go";
    const std::string answer = (go ? "done" : perform(line)) + "\n";
    static_cast<void>(!::write(socket, answer.data(), answer.size()));
    if (go && untilGo) return;
  }
}

}  // namespace

std::string perform(const std::string& line) {
  const Words words = split(line);
  const auto found = commands().find(words[0]);
  return found == commands().end() ? "no such command" : found->second(words);
}

void beginCommands() {
  const char* socket = std::getenv("KEYVORA_RIG_SOCKET");
  if (socket == nullptr) return;
  const int descriptor = std::atoi(socket);
  play(descriptor, true);
  loopRuns = true;
  std::thread([descriptor] {
    GSRegisterCurrentThread();
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    play(descriptor, false);
    [pool release];
  }).detach();
}

}  // namespace keyvora::rig
