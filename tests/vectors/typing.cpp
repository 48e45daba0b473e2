#include "hosts/simulated/host.h"
#include "runner/runner.h"
#include "tests/vectors/expected_trace.h"
#include "tests/vectors/line.h"

namespace keyvora::vectors {
namespace {

void setUp(simulated::Host& host, const Line& line) {
  host.queues.walking = simulated::Queues::Walking::inLine;
  if (const auto& process = field(line, "pid"); !process.IsNull()) {
    host.applications.start("com.microsoft.Excel",
                            static_cast<platform::ProcessIdentifier>(asInteger(process)));
  }
  if (!boolField(line, "source")) host.failures.always(simulated::Call::createSource);
  const auto& failing = field(line, "fail");
  if (!failing.IsArray()) throw MalformedLine("expected a list, found " + shown(failing));
  for (const auto& event : failing.GetArray()) {
    if (!event.IsArray() || event.Size() != 2) throw MalformedLine("expected a pair, found " + shown(event));
    host.failures.event(static_cast<std::uint16_t>(asInteger(event[0])), asInteger(event[1]) != 0);
  }
}

}  // namespace

/// One typing operation `op` with its arguments, on a system with this `pid` and event `source`, in which
/// some events `fail`; and its effects in order.
std::optional<Mismatch> checkTyping(const Line& line) {
  simulated::Host host;
  const platform::Scope scope(host.platform());
  setUp(host, line);
  Runner runner;
  const auto name = stringField(line, "name");
  const auto operation = stringField(line, "op");
  if (operation == "sendKeyTips") {
    runner.sendKeyTips(stringField(line, "keys"), name);
  } else if (operation == "sendKeystroke") {
    runner.sendKeystroke(stringField(line, "key"), stringsField(line, "modifiers"), name);
  } else {
    throw MalformedLine("unknown operation " + operation);
  }
  return compare(expectedTrace(field(line, "expect")), host.trace.entries());
}

}  // namespace keyvora::vectors
