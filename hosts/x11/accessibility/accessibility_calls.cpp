#include "hosts/x11/accessibility/accessibility_calls.h"

#include "hosts/x11/keyboard/current_tap.h"
#include "hosts/x11/tap/records.h"

namespace keyvora::x11 {
namespace {

static_assert(AccessibilityCalls::limit < verdictLimit);
constexpr int limitMilliseconds = AccessibilityCalls::limit.count();

/// Connects to the accessibility bus; false where there is none. Every call tries again.
bool connect() {
  if (atspi_is_initialized() && atspi_get_a11y_bus() != nullptr) return true;
  constexpr int noBus = 2;
  if (atspi_init() == noBus) {
    atspi_exit();  // clears the failed attempt
    return false;
  }
  atspi_set_timeout(limitMilliseconds, limitMilliseconds);
  return true;
}

std::string take(char* text) {
  const GText owned(text);
  return owned.get();
}

}  // namespace

/// Calls `call` with a place for a GError; nothing when it failed or the application has exceeded its time.
template <class Call>
auto AccessibilityCalls::ask(Call call) {
  GError* raw = nullptr;
  std::optional<decltype(call(&raw))> answer;
  if (gaveUp_) return answer;
  const auto start = g_get_monotonic_time();
  answer = call(&raw);
  const GErrorRef error(raw);
  // Not every call reports that it exceeded the time limit.
  if (g_get_monotonic_time() - start >= limitMilliseconds * G_TIME_SPAN_MILLISECOND) gaveUp_ = true;
  if (error) answer.reset();
  return answer;
}

Accessible AccessibilityCalls::desktop() {
  if (!connect()) return nullptr;
  Accessible desktop(atspi_get_desktop(0));
  if (desktop) atspi_accessible_clear_cache(desktop.get());
  return desktop;
}

std::optional<unsigned> AccessibilityCalls::process(const Accessible& application) {
  return ask([&](GError** error) { return atspi_accessible_get_process_id(application.get(), error); });
}

std::optional<AtspiRole> AccessibilityCalls::role(const Accessible& accessible) {
  return ask([&](GError** error) { return atspi_accessible_get_role(accessible.get(), error); });
}

std::optional<std::string> AccessibilityCalls::name(const Accessible& accessible) {
  const auto text = ask([&](GError** error) { return atspi_accessible_get_name(accessible.get(), error); });
  if (!text || *text == nullptr) return std::nullopt;
  return take(*text);
}

std::optional<int> AccessibilityCalls::childCount(const Accessible& accessible) {
  const auto count =
      ask([&](GError** error) { return atspi_accessible_get_child_count(accessible.get(), error); });
  return count && *count >= 0 ? count : std::nullopt;
}

Accessible AccessibilityCalls::child(const Accessible& accessible, int index) {
  return Accessible(ask([&](GError** error) {
                      return atspi_accessible_get_child_at_index(accessible.get(), index, error);
                    }).value_or(nullptr));
}

Accessible AccessibilityCalls::parent(const Accessible& accessible) {
  return Accessible(ask([&](GError** error) {
                      return atspi_accessible_get_parent(accessible.get(), error);
                    }).value_or(nullptr));
}

bool AccessibilityCalls::isActive(const Accessible& window) {
  const auto states =
      ask([&](GError**) { return GObjectRef<AtspiStateSet>(atspi_accessible_get_state_set(window.get())); });
  return states && *states && atspi_state_set_contains(states->get(), ATSPI_STATE_ACTIVE);
}

std::optional<std::string> AccessibilityCalls::keyBinding(const Accessible& accessible) {
  if (gaveUp_) return std::nullopt;
  const GObjectRef<AtspiAction> action(atspi_accessible_get_action_iface(accessible.get()));
  if (!action) return std::nullopt;
  const auto count = ask([&](GError** error) { return atspi_action_get_n_actions(action.get(), error); });
  if (!count || *count < 1) return std::nullopt;
  const auto text = ask([&](GError** error) { return atspi_action_get_key_binding(action.get(), 0, error); });
  if (!text || *text == nullptr) return std::nullopt;
  return take(*text);
}

bool AccessibilityCalls::press(const Accessible& accessible, KeyboardIsFree) {
  if (gaveUp_) return false;
  const GObjectRef<AtspiAction> action(atspi_accessible_get_action_iface(accessible.get()));
  if (!action) return false;
  const auto count = ask([&](GError** error) { return atspi_action_get_n_actions(action.get(), error); });
  if (!count || *count < 1) return false;
  // In every toolkit the first action is the one of a click.
  return ask([&](GError** error) { return atspi_action_do_action(action.get(), 0, error); }).value_or(FALSE);
}

}  // namespace keyvora::x11
