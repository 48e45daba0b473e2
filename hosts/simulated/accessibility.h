#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "hosts/simulated/main_loop.h"
#include "platform/accessibility.h"

namespace keyvora::simulated {

/// Error codes of the accessibility interface that the simulation returns, as `AXError`.
namespace accessibility_error {
inline constexpr std::int32_t invalidElement = -25202;
inline constexpr std::int32_t cannotComplete = -25204;
inline constexpr std::int32_t disabled = -25211;
inline constexpr std::int32_t noValue = -25212;
}  // namespace accessibility_error

class Accessibility;

/// An element of an application's tree, built by a test with `Accessibility::element`.
class TreeElement final : public platform::Element {
 public:
  explicit TreeElement(Accessibility& owner) : owner_(owner) {}

  /// Identifies the element in the trace; its title unless a test sets another.
  std::string identifier;

  /// The answers to reading attributes; an attribute that is not in the map has no value. A test may set
  /// any error and any kind of value: `attributes["AXTitle"] = {-25204, OtherValue{}}`.
  std::map<std::string, platform::AttributeAnswer, std::less<>> attributes;

  /// The error code of performing an action on it. The action is recorded in any case.
  std::int32_t performError = 0;

  platform::AttributeAnswer attribute(std::string_view name) override;
  std::int32_t perform(std::string_view action) override;

 private:
  Accessibility& owner_;
};

using TreeElementRef = std::shared_ptr<TreeElement>;

/// Accessibility trees in memory, and the permission to read them, which is granted unless a test removes
/// it.
class Accessibility final : public platform::Accessibility {
 public:
  Accessibility(World& world, MainLoop& loop) : world_(world), loop_(loop) {}

  /// The permission. Without it every element returns error -25211.
  bool trusted = true;

  /// The user grants the permission after this time.
  void grantAfter(double seconds);

  /// A new element. Without a title it is a container, unless a test adds attributes.
  TreeElementRef element(std::optional<std::string> title = std::nullopt,
                         std::vector<TreeElementRef> children = {});

  /// The roots by process. The root of any other process returns error -25202.
  std::map<platform::ProcessIdentifier, TreeElementRef> roots;

  /// Makes a root for the process whose "AXMenuBar" is this element.
  void setMenuBar(platform::ProcessIdentifier process, const TreeElementRef& menuBar);

  bool isTrusted() override;
  bool isTrustedPrompting() override;
  platform::ElementRef application(platform::ProcessIdentifier process) override;

 private:
  friend class TreeElement;

  World& world_;
  MainLoop& loop_;
};

}  // namespace keyvora::simulated
