#pragma once

#include <optional>
#include <string>
#include <vector>

#include "hosts/simulated/host.h"

namespace keyvora::testing {

/// One user's evening with the program, on a simulated system that may fail at any call: the first start, one
/// sequence of each kind, ordinary typing between them, a saved document, every command of the menu, the end.
class Session {
 public:
  Session();

  /// Starts the program, plays the evening and quits.
  void play();

  /// Starts the program for nothing but an answer about updates.
  void probe();

  /// Whether it all works again once nothing fails any more: in the running program (`restart` false) or
  /// after another start.
  bool recovers(bool restart);

  simulated::Host host;

  /// Keys typed while no sequence was armed, and how many of them did not arrive.
  int ordinaryKeys = 0;
  int lostKeys = 0;
  /// Keys typed right after a tap of Option that arrived all the same.
  int missedKeys = 0;
  /// Whether the tap stood when the evening was over.
  bool installed = false;

  /// The file of the log, without the times.
  [[nodiscard]] std::vector<std::string> logFile() const;

 private:
  void use();
  void work();
  void typeOrdinarily();
  void typeSequence(std::initializer_list<std::uint16_t> keys);
  /// Chooses a row of the menu if there is a menu with it.
  void choose(std::string_view title);
  void run(std::vector<std::string_view> arguments, std::function<void()> whileRunning);
  [[nodiscard]] bool works();
};

/// What `Session::play` logs when nothing fails.
std::vector<std::string> faultlessLog();

}  // namespace keyvora::testing
