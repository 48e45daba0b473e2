#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace keyvora::platform {

/// Something about this machine that keeps sequences from working, or makes them unsafe; texts for a person.
struct Finding {
  /// A few words by which it is known: "no window manager".
  std::string name;
  /// What does not work, and what to do about it; a sentence or two each.
  std::string sentence;
  std::string remedy;
  /// Whether some sequences do not work because of it.
  bool stopsSequences = false;
};

/// Something that is known about this machine: "window manager", "Openbox".
struct Fact {
  std::string name;
  std::string value;
};

/// What the host knows about why sequences work here, or do not. Main thread. It asks anew each time, and may
/// take a second or two where a part of the desktop does not answer.
class Diagnosis {
 public:
  virtual ~Diagnosis() = default;

  /// All that stands in the way now, the worst first; empty where the system itself asks and tells the user.
  /// `document` is where the mapping document is, or is to be.
  virtual std::vector<Finding> findings(const std::filesystem::path& document) = 0;

  /// What stands behind the findings, and about the target, by its bundle identifier.
  virtual std::vector<Fact> facts(std::string_view target) = 0;
};

}  // namespace keyvora::platform
