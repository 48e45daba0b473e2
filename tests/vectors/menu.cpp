#include "hosts/simulated/host.h"
#include "runner/runner.h"
#include "tests/vectors/expected_trace.h"
#include "tests/vectors/line.h"

namespace keyvora::vectors {
namespace {

constexpr platform::ProcessIdentifier process = 77;

std::int32_t errorField(const Line& value, const char* name) {
  return static_cast<std::int32_t>(asInteger(field(value, name)));
}

simulated::TreeElementRef asElement(simulated::Host& host, const Line& value);

platform::AttributeValue asTitle(const Line& value) {
  if (value.IsNull()) return {};
  if (value.IsObject()) return platform::OtherValue{};
  return asString(value);
}

platform::AttributeValue asChildren(simulated::Host& host, const Line& value) {
  if (value.IsNull()) return {};
  if (!value.IsArray()) return asString(value);
  std::vector<platform::ElementRef> children;
  for (const auto& child : value.GetArray()) children.push_back(asElement(host, child));
  return children;
}

/// An element whose children cannot be read has children nevertheless: the error must count.
simulated::TreeElementRef asElement(simulated::Host& host, const Line& value) {
  auto element = host.accessibility.element();
  element->identifier = std::to_string(asInteger(field(value, "id")));
  element->attributes["AXTitle"] = {errorField(value, "titleError"), asTitle(field(value, "title"))};
  element->attributes["AXChildren"] = {errorField(value, "childrenError"),
                                       asChildren(host, field(value, "children"))};
  return element;
}

void setUp(simulated::Host& host, const Line& menuBar) {
  if (menuBar.IsNull()) return;
  host.applications.start("com.microsoft.Excel", process);
  if (menuBar.IsObject()) host.accessibility.setMenuBar(process, asElement(host, menuBar));
}

}  // namespace

/// A `menuBar` (null: the target does not run; text: it cannot be read), a `path` in it, and the effects of
/// choosing that.
std::optional<Mismatch> checkMenu(const Line& line) {
  simulated::Host host;
  const platform::Scope scope(host.platform());
  setUp(host, field(line, "menuBar"));
  Runner().clickMenu(stringsField(line, "path"), stringField(line, "name"));
  return compare(expectedTrace(field(line, "expect")), host.trace.entries());
}

}  // namespace keyvora::vectors
