#include <algorithm>
#include <array>
#include <ctime>
#include <optional>
#include <thread>
#include <utility>
#include <variant>
#include <vector>

#include "tools/check.h"
#include "tools/commands.h"
#include "tools/file.h"
#include "tools/follow.h"
#include "tools/layouts.h"
#include "tools/loaded_document.h"
#include "tools/marked_text.h"
#include "tools/on_path.h"
#include "tools/wording.h"

namespace keyvora::tools {
namespace {

/// Checks one version of a document and writes the findings.
class Checker {
 public:
  Checker(const Options& options, const ChosenLayouts& layouts, const Streams& streams)
      : layouts_(layouts),
        streams_(streams),
        strict_(options.has("--strict")),
        json_(options.has("--json")) {}

  /// Whether there were errors, or any findings in strict mode. With `always` it also reports that there
  /// were none.
  bool operator()(const Source& source, bool always) const {
    const Document document(source.bytes);
    auto findings = check(document);
    compareWithLayouts(document, layouts_, findings);
    sortByPlace(findings);
    if (json_) {
      streams_.out << asJson(findings, source.name);
    } else if (streams_.terminal) {
      streams_.out << asMarkedText(findings, source.name, source.bytes, streams_.terminal->colours);
    } else {
      streams_.out << asText(findings, source.name);
    }
    if (findings.empty() && !json_ && (always || streams_.terminal)) {
      streams_.out << source.name << ": " << counted(document.entries().size(), "sequence")
                   << ", nothing to report\n";
    }
    streams_.out.flush();
    if (!json_) tellWhatCannotRun(document, source.name);
    return std::ranges::any_of(
        findings, [this](const Finding& finding) { return strict_ || finding.severity == Severity::error; });
  }

  /// Separates the output from that of the check before it.
  void separate() const {
    if (json_) return;
    const auto now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    std::array<char, 16> time{};
    std::strftime(time.data(), time.size(), "%H:%M:%S", &local);
    streams_.out << "--- " << time.data() << "\n";
  }

  void tellThatItIsGone(const std::string& file) const {
    if (json_) return;
    separate();
    streams_.out << file << ": is gone; waiting for it to come back\n";
    streams_.out.flush();
  }

 private:
  /// Scripts and key tips need Excel for Mac. Not one of the findings, because a document may be used on
  /// both systems.
  void tellWhatCannotRun(const Document& document, const std::string& name) const {
    if (onPath("osascript")) return;
    std::size_t scripts = 0;
    std::size_t keyTips = 0;
    for (const auto& entry : document.entries()) {
      scripts += std::holds_alternative<action::AppleScript>(entry.sequence.action) ? 1 : 0;
      keyTips += std::holds_alternative<action::KeyTips>(entry.sequence.action) ? 1 : 0;
    }
    if (scripts + keyTips == 0) return;
    streams_.error << name << ": " << counted(scripts + keyTips, "action")
                   << " cannot run here: " << counted(scripts, "script") << ", for want of osascript, and "
                   << counted(keyTips, "sequence") << " of Excel's own key tips\n";
  }

  const ChosenLayouts& layouts_;
  const Streams& streams_;
  bool strict_;
  bool json_;
};

/// Runs until the user interrupts it or the output is closed.
int watch(const std::vector<std::string>& files, const Checker& checker, const Streams& streams) {
  std::vector<Follower> followers(files.begin(), files.end());
  while (streams.out) {
    for (std::size_t i = 0; i < files.size(); ++i) {
      if (auto bytes = followers[i].changed()) {
        checker.separate();
        checker({files[i], std::move(*bytes)}, true);
      } else if (followers[i].vanished()) {
        checker.tellThatItIsGone(files[i]);
      }
    }
    std::this_thread::sleep_for(followInterval);
  }
  return exit_status::done;
}

/// What to check without a file argument: the user's own document, or the one that the user would get.
std::variant<Source, Unreadable> readOne(const std::optional<std::string>& file, bool watches,
                                         const Streams& streams) {
  if (file || !watches) return readDocument(file, streams);
  return Unreadable{"you have no document yet; name a file to watch"};
}

}  // namespace

int checkCommand(const Options& options, const Streams& streams) {
  ChosenLayouts layouts;
  if (const auto names = options.setting("--layout")) {
    auto chosen = chooseLayouts(*names, streams.host);
    if (const auto* why = std::get_if<std::string>(&chosen)) {
      streams.error << complaint(*why);
      return exit_status::failed;
    }
    layouts = std::get<ChosenLayouts>(std::move(chosen));
  }
  const Checker checker(options, layouts, streams);
  const bool watches = options.has("--watch");
  std::vector<std::optional<std::string>> files(options.operands.begin(), options.operands.end());
  if (files.empty()) files.push_back(watches ? ownDocumentThatExists() : std::nullopt);
  if (watches && std::ranges::find(files, "-") != files.end()) {
    streams.error << complaint("--watch needs a file");
    return exit_status::failed;
  }
  int status = exit_status::done;
  std::vector<std::string> names;
  for (const auto& file : files) {
    const auto read = readOne(file, watches, streams);
    if (const auto* unreadable = std::get_if<Unreadable>(&read)) {
      streams.error << complaint(unreadable->message);
      status = exit_status::failed;
      continue;
    }
    const auto& source = std::get<Source>(read);
    names.push_back(source.name);
    if (!watches && checker(source, false)) status = std::max(status, exit_status::no);
  }
  if (!watches || status == exit_status::failed) return status;
  return watch(names, checker, streams);
}

}  // namespace keyvora::tools
