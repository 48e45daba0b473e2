#pragma once

#include <optional>
#include <ostream>
#include <span>
#include <string>

#include "tools/host.h"

namespace keyvora::tools {

/// The program's exit statuses.
namespace exit_status {
/// Done; nothing is wrong.
inline constexpr int done = 0;
/// Carried out, with a negative answer: the document has errors, the letters fire nothing.
inline constexpr int no = 1;
/// Not carried out: wrong usage, a file that cannot be read or is not a mapping document.
inline constexpr int failed = 2;
}  // namespace exit_status

/// The terminal that the output goes to.
struct Terminal {
  bool colours = false;
};

/// What a command works with: streams for its output and its messages, and access to running programs.
struct Streams {
  std::ostream& out;
  std::ostream& error;
  /// Access to the machine and to running programs.
  HostOnce host = nullptr;
  /// None when the output goes to a file or a pipe.
  std::optional<Terminal> terminal = std::nullopt;
};

/// Runs a command line (without the program's name) and returns the exit status. Main thread.
int run(std::span<const std::string> arguments, const Streams& streams);

}  // namespace keyvora::tools
