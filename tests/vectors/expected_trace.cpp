#include "tests/vectors/expected_trace.h"

#include <sstream>

#include "tests/vectors/line.h"

namespace keyvora::vectors {
namespace {

namespace trace = simulated::trace;

simulated::TraceEntry asEntry(const Line& value) {
  if (!value.IsArray() || value.Size() < 2) throw MalformedLine("expected an entry, found " + shown(value));
  const auto kind = asString(value[0]);
  if (kind == "post" && value.Size() == 3) {
    trace::Posted posted{std::nullopt, asKeyEvent(value[2])};
    if (!value[1].IsNull()) posted.process = static_cast<platform::ProcessIdentifier>(asInteger(value[1]));
    return posted;
  }
  if (kind == "sleep") return trace::Slept{std::chrono::microseconds(asInteger(value[1]))};
  if (kind == "press") return trace::Performed{std::to_string(asInteger(value[1])), "AXPress"};
  if (kind == "log") return trace::Console{"keyvora: " + asString(value[1])};
  throw MalformedLine("unknown entry " + shown(value));
}

std::string shown(const std::vector<simulated::TraceEntry>& entries) {
  std::ostringstream out;
  for (const auto& entry : entries) {
    simulated::PrintTo(entry, &out);
    out << "; ";
  }
  return out.str();
}

}  // namespace

std::vector<simulated::TraceEntry> expectedTrace(const Line& expect) {
  if (!expect.IsArray()) throw MalformedLine("expected a list, found " + shown(expect));
  std::vector<simulated::TraceEntry> entries;
  for (const auto& entry : expect.GetArray()) entries.push_back(asEntry(entry));
  return entries;
}

std::optional<Mismatch> compare(const std::vector<simulated::TraceEntry>& expected,
                                const std::vector<simulated::TraceEntry>& actual) {
  if (expected == actual) return {};
  return Mismatch{shown(expected), shown(actual)};
}

platform::KeyEvent asKeyEvent(const Line& value) {
  platform::KeyEvent event;
  event.type = static_cast<std::uint32_t>(asInteger(field(value, "type")));
  event.keyCode = static_cast<std::uint16_t>(asInteger(field(value, "keyCode")));
  event.flags = static_cast<std::uint64_t>(asInteger(field(value, "flags")));
  event.userData = asInteger(field(value, "userData"));
  return event;
}

}  // namespace keyvora::vectors
