#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace keyvora::platform {

/// A condition of this machine that keeps sequences from working, or makes them unsafe. Texts are for the
/// user.
struct Finding {
  /// A short name: "no window manager".
  std::string name;
  /// What does not work, and what to do about it; one or two sentences each.
  std::string sentence;
  std::string remedy;
  /// Whether some sequences do not work because of it.
  bool stopsSequences = false;
};

/// A property of this machine: "window manager", "Openbox".
struct Fact {
  std::string name;
  std::string value;
};

/// What the host knows about why sequences work on this machine, or do not. Main thread. Each call examines
/// the machine again, and may take a second or two when a part of the desktop does not answer.
class Diagnosis {
 public:
  virtual ~Diagnosis() = default;

  /// All conditions found now, the worst first; empty on systems that inform the user themselves.
  /// `document` is the path of the mapping document, which need not exist.
  virtual std::vector<Finding> findings(const std::filesystem::path& document) = 0;

  /// Runs the block once, when those parts of the desktop that findings depend on have started: at once when
  /// they have, else later on the main loop, after a limited time in any case. For a program that starts with
  /// the desktop. A block that still waits is dropped by a later call.
  virtual void whenDesktopIsUp(const std::function<void()>& block) { block(); }

  /// The facts behind the findings, and facts about the target, given by its bundle identifier.
  virtual std::vector<Fact> facts(std::string_view target) = 0;
};

}  // namespace keyvora::platform
