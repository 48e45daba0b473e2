// Menu trees of any shape, with elements that fail: the walk must press and log the same as its model, and
// touch nothing else.

#include "fuzz/input.h"
#include "fuzz/menus/menu_model.h"
#include "hosts/simulated/host.h"
#include "platform/platform.h"
#include "runner/runner.h"

namespace keyvora::fuzz {
namespace {

constexpr platform::ProcessIdentifier process = 77;
constexpr std::size_t mostNodes = 200;

std::string someTitle(FuzzedDataProvider& input) {
  static const std::string titles[] = {"File",    "Save", "Save…", "Save...", "file", "é",
                                       "e\u0301", "",     " File", "A\u030A", "Å"};
  if (input.ConsumeIntegralInRange(0, 7) == 0) return someText(input, 6);
  return titles[input.ConsumeIntegralInRange<std::size_t>(0, std::size(titles) - 1)];
}

NodeRef someTree(FuzzedDataProvider& input, std::size_t& made, int depth) {
  auto node = std::make_shared<Node>();
  node->identifier = "element " + std::to_string(made++);
  if (input.ConsumeIntegralInRange(0, 3) != 0) node->title = someTitle(input);
  if (input.ConsumeIntegralInRange(0, 7) == 0) node->titleError = -25204;
  const auto state = input.ConsumeIntegralInRange(0, 15);
  if (state < 4) node->state = static_cast<Node::Children>(state + 1);
  if (depth == 0) return node;
  for (auto left = input.ConsumeIntegralInRange(0, 4); left > 0 && made < mostNodes; --left) {
    node->children.push_back(someTree(input, made, depth - 1));
  }
  return node;
}

simulated::TreeElementRef build(simulated::Host& host, const Node& node, bool otherTitle) {
  std::vector<simulated::TreeElementRef> children;
  for (const auto& child : node.children) children.push_back(build(host, *child, otherTitle));
  auto element = host.accessibility.element(node.title, children);
  element->identifier = node.identifier;
  if (node.title) element->attributes["AXTitle"].error = node.titleError;
  if (!node.title && otherTitle) element->attributes["AXTitle"] = {0, platform::OtherValue{}};
  auto& answer = element->attributes["AXChildren"];
  switch (node.state) {
    case Node::Children::listed:
      break;
    case Node::Children::failing:
      answer = {-25204, {}};
      break;
    case Node::Children::failingWithList:
      answer.error = -25204;
      break;
    case Node::Children::absent:
      answer = {0, {}};
      break;
    case Node::Children::otherValue:
      answer = {0, platform::OtherValue{}};
      break;
  }
  return element;
}

void check(FuzzedDataProvider& input) {
  std::vector<std::string> path;
  for (auto left = input.ConsumeIntegralInRange(0, 4); left > 0; --left) path.push_back(someTitle(input));
  const bool otherTitle = input.ConsumeBool();
  const bool hasMenuBar = input.ConsumeIntegralInRange(0, 15) != 0;
  std::size_t made = 0;
  const auto tree = someTree(input, made, 4);

  simulated::Host host;
  const platform::Scope scope(host.platform());
  host.applications.start("com.microsoft.Excel", process);
  if (hasMenuBar) host.accessibility.setMenuBar(process, build(host, *tree, otherTitle));
  Runner runner;
  runner.clickMenu(path, "H F  label");

  const auto outcome = expected(hasMenuBar ? tree : nullptr, path, "H F  label");
  require(host.trace.logged() == std::vector{outcome.line}, "the line that the model writes");
  std::vector<simulated::trace::Performed> pressed;
  if (outcome.pressed) pressed.push_back({*outcome.pressed, "AXPress"});
  require(host.trace.of<simulated::trace::Performed>() == pressed, "the element that the model presses");
}

}  // namespace
}  // namespace keyvora::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider input(data, size);
  keyvora::fuzz::check(input);
  return 0;
}
