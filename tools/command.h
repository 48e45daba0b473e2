#pragma once

#include <optional>
#include <ostream>
#include <span>
#include <string>

#include "tools/host.h"

namespace keyvora::tools {

/// What the program ends with.
namespace exit_status {
/// Done; nothing is wrong.
inline constexpr int done = 0;
/// Done, and the answer is no: the document has errors, the letters fire nothing.
inline constexpr int no = 1;
/// Could not be done: wrong usage, a file that cannot be read or is no mapping document.
inline constexpr int failed = 2;
}  // namespace exit_status

/// A terminal at the other end of the output.
struct Terminal {
  bool colours = false;
};

/// What a command has to do with: where it writes what it was asked for and what went wrong, and the programs
/// that run.
struct Streams {
  std::ostream& out;
  std::ostream& error;
  /// What the machine and the programs that run are asked through.
  HostOnce host = nullptr;
  /// None when the output goes to a file or to another program.
  std::optional<Terminal> terminal = std::nullopt;
};

/// Carries out a command line (without the program's name) and returns the exit status. Main thread.
int run(std::span<const std::string> arguments, const Streams& streams);

}  // namespace keyvora::tools
