#pragma once

#include <optional>
#include <string>
#include <vector>

#include "hosts/simulated/host.h"

namespace keyvora::testing {

/// A user's whole use of the program, on a simulated system in which any call may fail: first start, one
/// sequence of each kind, ordinary typing in between, a saved document, every menu command, the end.
class Session {
 public:
  Session();

  /// Starts the program, plays everything and quits.
  void play();

  /// Starts the program with --probe-updates.
  void probe();

  /// Whether everything works again without failures: in the running program (`restart` false) or after
  /// another start.
  bool recovers(bool restart);

  simulated::Host host;

  /// Keys typed while no sequence was armed, and how many of them did not arrive.
  int ordinaryKeys = 0;
  int lostKeys = 0;
  /// Keys typed directly after a tap of Option that arrived nevertheless.
  int missedKeys = 0;
  /// Whether the tap was installed at the end.
  bool installed = false;

  /// The lines of the log file, without the times.
  [[nodiscard]] std::vector<std::string> logFile() const;

 private:
  void use();
  void work();
  void typeOrdinarily();
  void typeSequence(std::initializer_list<std::uint16_t> keys);
  /// Chooses this row of the menu, if there is one.
  void choose(std::string_view title);
  void run(std::vector<std::string_view> arguments, std::function<void()> whileRunning);
  [[nodiscard]] bool works();
};

/// What `Session::play` logs without failures.
std::vector<std::string> faultlessLog();

}  // namespace keyvora::testing
