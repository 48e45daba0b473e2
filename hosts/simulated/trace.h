#pragma once

#include <chrono>
#include <filesystem>
#include <mutex>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "platform/application.h"
#include "platform/keyboard.h"

namespace keyvora::simulated {

/// What the program did to the simulated system, one type for each kind of entry.
namespace trace {

/// A record reached the console, as the program wrote it.
struct Console {
  std::string record;
  bool operator==(const Console&) const = default;
};

/// An event was posted: to a process, or at the hardware level when `process` is none.
struct Posted {
  std::optional<platform::ProcessIdentifier> process;
  platform::KeyEvent event;
  bool operator==(const Posted&) const = default;
};

/// An event posted at the hardware level reached the program's own tap, which gave this verdict.
struct Tapped {
  platform::KeyEvent event;
  platform::Verdict verdict;
  bool operator==(const Tapped&) const = default;
};

/// A plan slept. A step that does not sleep has no entry.
struct Slept {
  std::chrono::microseconds time;
  bool operator==(const Slept&) const = default;
};

/// A tap was enabled.
struct TapEnabled {
  bool operator==(const TapEnabled&) const = default;
};

/// An action was performed on an element of an accessibility tree.
struct Performed {
  /// `TreeElement::identifier`.
  std::string element;
  std::string action;
  bool operator==(const Performed&) const = default;
};

/// The user was asked for the Accessibility permission.
struct AskedForTrust {
  bool operator==(const AskedForTrust&) const = default;
};

struct ScriptRun {
  std::string source;
  bool operator==(const ScriptRun&) const = default;
};

struct TitleShown {
  std::string title;
  bool operator==(const TitleShown&) const = default;
};

/// A menu was given to the status item; separators have empty titles.
struct MenuShown {
  std::vector<std::string> titles;
  bool operator==(const MenuShown&) const = default;
};

struct FileOpened {
  std::string path;
  bool operator==(const FileOpened&) const = default;
};

struct AddressOpened {
  std::string address;
  bool operator==(const AddressOpened&) const = default;
};

/// A line on standard output.
struct Printed {
  std::string line;
  bool operator==(const Printed&) const = default;
};

/// The process ended with this status: by `Process::exit`, by `Application::terminate`.
struct Exited {
  int status;
  bool operator==(const Exited&) const = default;
};

/// The application was given its delegate.
struct DelegateSet {
  bool operator==(const DelegateSet&) const = default;
};

struct PolicySet {
  platform::ActivationPolicy policy;
  bool operator==(const PolicySet&) const = default;
};

struct Activated {
  bool operator==(const Activated&) const = default;
};

/// The program tried to register as a login item, or to remove the registration.
struct LoginChanged {
  bool registered;
  bool operator==(const LoginChanged&) const = default;
};

/// A call of the update framework.
struct UpdaterCalled {
  enum class What { created, started, checked, probed };
  What what;
  bool operator==(const UpdaterCalled&) const = default;
};

/// An entry made by a test, to see the order of its callbacks among the program's entries.
struct Note {
  std::string text;
  bool operator==(const Note&) const = default;
};

}  // namespace trace

using TraceEntry = std::variant<trace::Console, trace::Posted, trace::Tapped, trace::Slept, trace::TapEnabled,
                                trace::Performed, trace::AskedForTrust, trace::ScriptRun, trace::TitleShown,
                                trace::MenuShown, trace::FileOpened, trace::AddressOpened, trace::Printed,
                                trace::Exited, trace::DelegateSet, trace::PolicySet, trace::Activated,
                                trace::LoginChanged, trace::UpdaterCalled, trace::Note>;

/// Writes an entry for a person, such as `Console "keyvora: launch 1.2 (42)"`.
void PrintTo(const TraceEntry& entry, std::ostream* out);

/// Everything that the program did to the simulated system, in order. Any thread.
class Trace {
 public:
  void add(TraceEntry entry);
  void note(std::string text) { add(trace::Note{std::move(text)}); }

  [[nodiscard]] std::vector<TraceEntry> entries() const;

  /// Returns the entries so far and clears them: what the next step of a test did.
  std::vector<TraceEntry> take();

  void clear() { take(); }

  /// The entries of one type, in order: `trace.of<trace::Posted>()`.
  template <class Entry>
  [[nodiscard]] std::vector<Entry> of() const {
    const std::scoped_lock lock(mutex_);
    std::vector<Entry> found;
    for (const auto& entry : entries_) {
      if (const auto* match = std::get_if<Entry>(&entry)) found.push_back(*match);
    }
    return found;
  }

  /// The logged messages, taken from the console copies, without the program's name.
  [[nodiscard]] std::vector<std::string> logged() const;

  /// Stops recording, for long runs. The simulation itself does not need the entries.
  void stop();

 private:
  mutable std::mutex mutex_;
  bool stopped_ = false;
  std::vector<TraceEntry> entries_;
};

/// The message of a log line's console copy: the record without "keyvora: " in front.
std::string_view messageOf(const trace::Console& entry);

}  // namespace keyvora::simulated
