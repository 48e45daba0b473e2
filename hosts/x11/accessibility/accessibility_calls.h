#pragma once

#include <atspi/atspi.h>

#include <chrono>
#include <optional>
#include <string>

#include "hosts/x11/gobject.h"

namespace keyvora::x11 {

class KeyboardIsFree;

/// Something on the accessibility bus; null for none.
using Accessible = GObjectRef<AtspiAccessible>;

/// Calls to one application on the accessibility bus. A failure is an empty answer. Each call has a time
/// limit; once one exceeds it, the application counts as hung and all later calls fail at once. Main
/// thread.
class AccessibilityCalls {
 public:
  /// The time limit for one answer of an application, which usually takes milliseconds. Shorter than the
  /// limit for a verdict, so that a target that hangs does not disable the tap as well.
  static constexpr std::chrono::milliseconds limit{800};

  /// Whether the application has exceeded the time limit.
  [[nodiscard]] bool gaveUp() const { return gaveUp_; }

  /// The root of all applications on the bus, without cached children; null without an accessibility bus.
  Accessible desktop();

  std::optional<unsigned> process(const Accessible& application);
  std::optional<AtspiRole> role(const Accessible& accessible);
  std::optional<std::string> name(const Accessible& accessible);
  std::optional<int> childCount(const Accessible& accessible);
  Accessible child(const Accessible& accessible, int index);
  Accessible parent(const Accessible& accessible);

  /// Whether a window has the keyboard focus, according to its application.
  bool isActive(const Accessible& window);

  /// The key binding of the action by which a user would choose the element; none where it has none.
  std::optional<std::string> keyBinding(const Accessible& accessible);

  /// Performs the action by which a user would choose the element; false when there is none or it failed.
  bool press(const Accessible& accessible, KeyboardIsFree);

 private:
  template <class Call>
  auto ask(Call call);

  bool gaveUp_ = false;
};

}  // namespace keyvora::x11
