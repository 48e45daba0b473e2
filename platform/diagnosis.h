#pragma once

#include <filesystem>
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

  /// The facts behind the findings, and facts about the target, given by its bundle identifier.
  virtual std::vector<Fact> facts(std::string_view target) = 0;
};

}  // namespace keyvora::platform
