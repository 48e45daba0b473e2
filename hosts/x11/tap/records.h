#pragma once

#include <chrono>
#include <cstdint>
#include <type_traits>

#include "hosts/x11/tap/own_events.h"
#include "platform/keyboard.h"

/// The protocol between the tap, a program of its own, and its owner, the main program: one record per
/// message, over a socket pair of which the tap inherits one end. The two share nothing else, neither memory
/// nor a lock: a process that is stopped must not hold what the other one needs.
///
///     tap                                owner
///      ◄──────── enable ─────────────────        keys are grabbed from now on
///      ────────── enabled ──────────────►
///      ────────── told 1 ───────────────►        an event that reaches its window anyway
///      ────────── asked 2 ──────────────►        an event for which the server froze the keyboard
///      ◄───────── verdict 2 ─────────────        all events up to 2 are handled; the verdict on 2
///      ◄───────── settle 2 ──────────────        only if the program is about to act
///      ────────── released 2 ───────────►        the server has thawed the keyboard
///      ◄───────── handled 3 ─────────────        all events up to 3 are handled
///      ────────── disabled 5 ───────────►        too late: all events up to 5 are void, none follows until
///                                                `enable`
///
/// Each end closes its socket to end the other: the tap then releases everything and ends; the owner starts
/// another one.
namespace keyvora::x11 {

/// The file descriptor of the tap's end of the pair.
inline constexpr int tapSocket = 3;

/// Both ends must be of the same build: the tap sends this number first, and an owner with another one
/// refuses it.
inline constexpr std::uint32_t recordsVersion = 2;

/// How long the owner may take to handle an event. After that the tap passes the event.
inline constexpr std::chrono::milliseconds verdictLimit{1000};

/// From the tap.
struct TapRecord {
  enum class Kind : std::uint32_t {
    /// It can work, and is disabled. `number` is `recordsVersion`.
    ready,
    /// It cannot work, and ends: the display lacks something, or another program has grabbed the keys.
    refused,
    enabled,
    told,
    asked,
    released,
    disabled,
  };

  Kind kind = Kind::ready;
  /// The event's number; each is one higher than the last.
  std::uint64_t number = 0;
  /// When the event was read, in nanoseconds of the steady clock, which all processes share.
  std::int64_t since = 0;
  /// For `asked`: the X window that the event is meant for; else 0.
  std::uint64_t window = 0;
  platform::KeyEvent event{};
};

/// From the owner.
struct OwnerRecord {
  enum class Kind : std::uint32_t { enable, verdict, handled, settle, inject };

  Kind kind = Kind::enable;
  /// The event's number.
  std::uint64_t number = 0;
  platform::Verdict verdict = platform::Verdict::pass;
  /// For `inject`: the X keycode to press or release with XTEST, and the mark that its event gets.
  std::uint8_t keycode = 0;
  bool down = false;
  OwnMark mark{};
};

static_assert(std::is_trivially_copyable_v<TapRecord> && std::is_trivially_copyable_v<OwnerRecord>);

}  // namespace keyvora::x11
