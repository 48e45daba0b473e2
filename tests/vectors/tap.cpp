#include <cmath>
#include <sstream>

#include "mapping/decode.h"
#include "tests/tap/tap_rig.h"
#include "tests/vectors/expected_trace.h"
#include "tests/vectors/line.h"

namespace keyvora::vectors {
namespace {

using testing::Happening;
using testing::StepResult;
using testing::TapRig;

Mapping asMapping(const Line& value) {
  auto decoded = decode(shown(value));
  if (const auto* error = std::get_if<DecodingError>(&decoded)) throw MalformedLine(error->description);
  return std::get<Mapping>(std::move(decoded));
}

StepResult play(TapRig& rig, const Line& step) {
  if (step.HasMember("event")) {
    return rig.event(asKeyEvent(field(step, "event")), boolField(step, "frontmost"));
  }
  if (step.HasMember("reload")) return rig.reload(asMapping(field(step, "reload")));
  const auto& seconds = field(step, "advance");
  if (!seconds.IsNumber()) throw MalformedLine("expected seconds, found " + shown(seconds));
  return rig.advance(std::llround(seconds.GetDouble() * 1e6));
}

/// The words of an entry; a list is between "[" and "]".
void addWords(Happening& words, const Line& entry) {
  for (const auto& value : entry.GetArray()) {
    if (value.IsArray()) {
      words.emplace_back("[");
      addWords(words, value);
      words.emplace_back("]");
    } else {
      words.push_back(value.IsBool() ? shown(value) : asString(value));
    }
  }
}

std::optional<platform::Verdict> asVerdict(const Line& value) {
  if (value.IsNull()) return {};
  const auto verdict = asString(value);
  if (verdict == "pass") return platform::Verdict::pass;
  if (verdict == "swallow") return platform::Verdict::swallow;
  throw MalformedLine("unknown verdict " + verdict);
}

StepResult asResult(const Line& value) {
  StepResult result{asVerdict(field(value, "verdict")), {}};
  for (const auto& entry : field(value, "trace").GetArray()) addWords(result.trace.emplace_back(), entry);
  return result;
}

std::string described(std::size_t step, const StepResult& result) {
  std::ostringstream out;
  out << "step " << step << ": ";
  PrintTo(result, &out);
  return out.str();
}

}  // namespace

/// The `steps` of a run on a `document`: events, advances of the clock, reloads; for each step the verdict
/// and the visible effects.
std::optional<Mismatch> checkTap(const Line& line) {
  TapRig rig(asMapping(field(line, "document")));
  const auto& steps = field(line, "steps");
  const auto& expect = field(line, "expect");
  if (!steps.IsArray() || !expect.IsArray() || steps.Size() != expect.Size()) {
    throw MalformedLine("steps and expectations are no lists of one length");
  }
  for (rapidjson::SizeType i = 0; i < steps.Size(); ++i) {
    const auto expected = asResult(expect[i]);
    const auto actual = play(rig, steps[i]);
    if (actual != expected) return Mismatch{described(i, expected), described(i, actual)};
  }
  return {};
}

}  // namespace keyvora::vectors
