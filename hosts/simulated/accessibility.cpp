#include "hosts/simulated/accessibility.h"

namespace keyvora::simulated {
namespace {

class UnreachableElement final : public platform::Element {
 public:
  platform::AttributeAnswer attribute(std::string_view) override {
    return {accessibility_error::invalidElement, {}};
  }
  std::int32_t perform(std::string_view) override { return accessibility_error::invalidElement; }
};

}  // namespace

platform::AttributeAnswer TreeElement::attribute(std::string_view name) {
  if (owner_.world_.fails(Call::elementAttribute)) return {accessibility_error::cannotComplete, {}};
  if (!owner_.trusted) return {accessibility_error::disabled, {}};
  const auto found = attributes.find(name);
  if (found == attributes.end()) return {accessibility_error::noValue, {}};
  return found->second;
}

std::int32_t TreeElement::perform(std::string_view action) {
  if (owner_.world_.fails(Call::elementPerform)) return accessibility_error::cannotComplete;
  if (!owner_.trusted) return accessibility_error::disabled;
  owner_.world_.trace.add(trace::Performed{identifier, std::string(action)});
  return performError;
}

void Accessibility::grantAfter(double seconds) {
  loop_.enqueue(platform::Seconds(seconds), [this] { trusted = true; });
}

TreeElementRef Accessibility::element(std::optional<std::string> title,
                                      std::vector<TreeElementRef> children) {
  auto made = std::make_shared<TreeElement>(*this);
  if (title) {
    made->identifier = *title;
    made->attributes["AXTitle"] = {0, std::move(*title)};
  }
  made->attributes["AXChildren"] = {0, std::vector<platform::ElementRef>(children.begin(), children.end())};
  return made;
}

void Accessibility::setMenuBar(platform::ProcessIdentifier process, const TreeElementRef& menuBar) {
  roots[process] = element();
  roots[process]->attributes["AXMenuBar"] = {0, platform::ElementRef(menuBar)};
}

bool Accessibility::isTrusted() {
  return !world_.fails(Call::isTrusted) && trusted;
}

bool Accessibility::isTrustedPrompting() {
  if (world_.fails(Call::isTrustedPrompting)) return false;
  if (!trusted) world_.trace.add(trace::AskedForTrust{});
  return trusted;
}

platform::ElementRef Accessibility::application(platform::ProcessIdentifier process) {
  const auto found = roots.find(process);
  if (found == roots.end()) return std::make_shared<UnreachableElement>();
  return found->second;
}

}  // namespace keyvora::simulated
