#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "hosts/simulated/main_loop.h"
#include "platform/accessibility.h"

namespace keyvora::simulated {

/// Error codes of the accessibility interface that the simulation gives, as `AXError`.
namespace accessibility_error {
inline constexpr std::int32_t invalidElement = -25202;
inline constexpr std::int32_t cannotComplete = -25204;
inline constexpr std::int32_t disabled = -25211;
inline constexpr std::int32_t noValue = -25212;
}  // namespace accessibility_error

class Accessibility;

/// An element of an application's tree, as a test builds it: made by `Accessibility::element`.
class TreeElement final : public platform::Element {
 public:
  explicit TreeElement(Accessibility& owner) : owner_(owner) {}

  /// Tells the element in the trace; its title unless a test chooses another.
  std::string identifier;

  /// What reading an attribute answers; one that is not here has no value. A test sets any error and any kind
  /// of value: `attributes["AXTitle"] = {-25204, OtherValue{}}`.
  std::map<std::string, platform::AttributeAnswer, std::less<>> attributes;

  /// The error code of performing an action on it, which is recorded all the same.
  std::int32_t performError = 0;

  platform::AttributeAnswer attribute(std::string_view name) override;
  std::int32_t perform(std::string_view action) override;

 private:
  Accessibility& owner_;
};

using TreeElementRef = std::shared_ptr<TreeElement>;

/// Accessibility trees held in memory, and the permission to read them: granted unless a test takes it away.
class Accessibility final : public platform::Accessibility {
 public:
  Accessibility(World& world, MainLoop& loop) : world_(world), loop_(loop) {}

  /// The permission. Without it every element answers with error -25211.
  bool trusted = true;

  /// The user grants the permission when so much time has passed.
  void grantAfter(double seconds);

  /// A new element: without a title it is a container, or whatever a test makes of it.
  TreeElementRef element(std::optional<std::string> title = std::nullopt,
                         std::vector<TreeElementRef> children = {});

  /// The roots by process. The root of a process that is not here answers with error -25202.
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
