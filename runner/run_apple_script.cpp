#include "log/log.h"
#include "platform/platform.h"
#include "runner/outcome.h"
#include "runner/runner.h"

namespace keyvora {

void Runner::runAppleScript(const std::string& script, const std::string& name) {
  // The fragment goes in as it stands: whatever it holds becomes part of the script.
  const auto source = "tell application \"Microsoft Excel\"\n" + script + "\nend tell";
  const auto result = platform::current().scripts.run(source);
  Log::line(result.succeeded ? outcome::done(name, "applescript")
                             : outcome::failed(name, result.message.value_or("unknown error")));
}

}  // namespace keyvora
