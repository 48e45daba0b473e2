#include <algorithm>
#include <thread>
#include <variant>

#include "tools/check.h"
#include "tools/commands.h"
#include "tools/file.h"
#include "tools/follow.h"

namespace keyvora::tools {
namespace {

/// Checks one version of a document and writes what there is to say.
class Checker {
 public:
  Checker(const Options& options, const Streams& streams)
      : streams_(streams), strict_(options.has("--strict")), json_(options.has("--json")) {}

  /// Whether errors were found, or anything at all in strict mode. `sayNothing` is what to say when there is
  /// nothing to say.
  bool operator()(const Source& source, std::string_view sayNothing = {}) const {
    const auto findings = check(Document(source.bytes));
    streams_.out << (json_ ? asJson(findings, source.name) : asText(findings, source.name));
    if (findings.empty() && !json_) streams_.out << sayNothing;
    streams_.out.flush();
    return std::ranges::any_of(
        findings, [this](const Finding& finding) { return strict_ || finding.severity == Severity::error; });
  }

 private:
  const Streams& streams_;
  bool strict_;
  bool json_;
};

/// Until the user interrupts it or nobody reads on.
int watch(const std::string& file, const Checker& checker, const Streams& streams) {
  Follower follower(file);
  while (streams.out) {
    if (auto bytes = follower.changed()) {
      checker({file, std::move(*bytes)}, file + ": nothing to report\n");
    }
    std::this_thread::sleep_for(followInterval);
  }
  return exit_status::done;
}

}  // namespace

int checkCommand(const Options& options, const Streams& streams) {
  auto file = options.operand(0);
  if (!file) {
    const auto own = userDocument();
    if (!own) {
      streams.error << complaint("you have no home directory; name a file");
      return exit_status::failed;
    }
    file = own->string();
  }
  const Checker checker(options, streams);
  if (options.has("--watch") && file == "-") {
    streams.error << complaint("--watch needs a file");
    return exit_status::failed;
  }
  const auto read = readFile(*file);
  if (const auto* unreadable = std::get_if<Unreadable>(&read)) {
    streams.error << complaint(unreadable->message);
    return exit_status::failed;
  }
  if (options.has("--watch")) return watch(*file, checker, streams);
  return checker(std::get<Source>(read)) ? exit_status::no : exit_status::done;
}

}  // namespace keyvora::tools
