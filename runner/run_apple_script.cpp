#include "log/log.h"
#include "platform/platform.h"
#include "runner/outcome.h"
#include "runner/runner.h"

namespace keyvora {

std::string Runner::scriptFor(const std::string& fragment) {
  // The fragment is inserted unchanged: all of it becomes part of the script.
  return "tell application \"Microsoft Excel\"\n" + fragment + "\nend tell";
}

void Runner::runAppleScript(const std::string& script, const std::string& name) {
  const auto result = platform::current().scripts.run(scriptFor(script));
  Log::line(result.succeeded ? outcome::done(name, "applescript")
                             : outcome::failed(name, result.message.value_or("unknown error")));
}

}  // namespace keyvora
