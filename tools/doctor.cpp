#include "tools/doctor.h"

#include <algorithm>
#include <optional>

#include "runner/excel.h"
#include "tools/check.h"
#include "tools/commands.h"
#include "tools/embedded.h"
#include "tools/wording.h"

namespace keyvora::tools {
namespace {

constexpr std::size_t valueColumn = 20;

void write(std::ostream& out, const platform::Fact& fact) {
  const auto padding = fact.name.size() < valueColumn ? valueColumn - fact.name.size() : 1;
  out << fact.name << std::string(padding, ' ') << fact.value << "\n";
}

/// The user's document, as far as it could be read.
struct Examined {
  std::filesystem::path path;
  std::string state;
  /// Why it does not load, a line each; empty when it loads, or does not exist before the first start.
  std::string errors;
};

Examined examineDocument(platform::FileSystem& files) {
  const auto support = files.applicationSupportDirectory();
  if (!support) return {{}, "there is no home directory for it", "There is no home directory.\n"};
  Examined result{*support / "keyvora" / "mappings.json", {}, {}};
  const auto name = result.path.string();
  if (!files.exists(result.path)) {
    result.state = name + ", which the first start makes";
    return result;
  }
  const auto content = files.read(result.path);
  if (content.error) {
    result.state = name + ", which cannot be read";
    result.errors = *content.error + "\n";
    return result;
  }
  const Document document(content.bytes);
  result.state = name + ", " + counted(document.entries().size(), "sequence");
  if (document.isSound()) return result;
  result.state = name + ", which does not load";
  result.errors = asText(errorsIn(document), name);
  return result;
}

}  // namespace

bool examine(const platform::Platform& machine, std::ostream& out) {
  const auto document = examineDocument(machine.fileSystem);
  write(out, {"version", std::string(embedded::version)});
  for (const auto& fact : machine.diagnosis.facts(Excel::bundleIdentifier)) write(out, fact);
  write(out, {"document", document.state});
  if (const auto library = machine.fileSystem.libraryDirectory()) {
    write(out, {"log", (*library / "Logs" / "keyvora.log").string()});
  }
  out << "\n";

  const auto findings = machine.diagnosis.findings(document.path);
  for (const auto& finding : findings) {
    out << finding.name << ": " << finding.sentence << "\n  " << finding.remedy << "\n";
  }
  out << document.errors;
  const bool works = document.errors.empty() && std::ranges::none_of(findings, [](const auto& finding) {
                       return finding.stopsSequences;
                     });
  if (works) out << "Nothing that is known here keeps sequences from working.\n";
  return works;
}

int doctorCommand(const Options&, const Streams& streams) {
  const auto* host = streams.host.get();
  if (host == nullptr) {
    streams.error << complaint("this build knows nothing of the system that it runs on");
    return exit_status::failed;
  }
  return examine(host->platform(), streams.out) ? exit_status::done : exit_status::no;
}

}  // namespace keyvora::tools
