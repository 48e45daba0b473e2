#pragma once

#include <chrono>
#include <cstdint>
#include <type_traits>

#include "hosts/x11/tap/own_events.h"
#include "platform/keyboard.h"

/// What the tap, a program of its own, and its owner, the main program, say to each other: one record a
/// message, over a pair of sockets of which the tap inherits one end. Nothing else is shared, neither memory
/// nor a lock: a process that stands still must not hold what the other one needs.
///
///     tap                                owner
///      ◄──────── enable ─────────────────        keys are grabbed from now on
///      ────────── enabled ──────────────►
///      ────────── told 1 ───────────────►        on its way to its window already
///      ────────── asked 2 ──────────────►        the server holds the keyboard
///      ◄───────── verdict 2 ─────────────        all up to 2 was dealt with, and this becomes of 2
///      ◄───────── settle 2 ──────────────        only where somebody is about to act
///      ────────── released 2 ───────────►        the server has let the keyboard go
///      ◄───────── handled 3 ─────────────        all up to 3 was dealt with
///      ────────── disabled 5 ───────────►        too late: all up to 5 is void, nothing follows until
///      `enable`
///
/// Each end closes its socket to end the other: the tap then lets go of everything and ends, and the owner
/// starts another one.
namespace keyvora::x11 {

/// The number under which the tap finds its end of the pair.
inline constexpr int tapSocket = 3;

/// Both ends are of one build: the tap says this number first, and an owner that has another one refuses it.
inline constexpr std::uint32_t recordsVersion = 2;

/// How long the owner may take with an event before the keyboard goes on without it.
inline constexpr std::chrono::milliseconds verdictLimit{1000};

/// From the tap.
struct TapRecord {
  enum class Kind : std::uint32_t {
    /// It can do its work, and is switched off. `number` is `recordsVersion`.
    ready,
    /// It cannot, and ends: the display lacks something, or another program holds the keys.
    refused,
    enabled,
    told,
    asked,
    released,
    disabled,
  };

  Kind kind = Kind::ready;
  /// Of the event; numbers grow by one.
  std::uint64_t number = 0;
  /// When the event was read, in nanoseconds of the steady clock, which is one for all processes.
  std::int64_t since = 0;
  /// The window that an event asked about is meant for, by the number that X has for it; else 0.
  std::uint64_t window = 0;
  platform::KeyEvent event{};
};

/// From the owner.
struct OwnerRecord {
  enum class Kind : std::uint32_t { enable, verdict, handled, settle, inject };

  Kind kind = Kind::enable;
  /// Of the event.
  std::uint64_t number = 0;
  platform::Verdict verdict = platform::Verdict::pass;
  /// For `inject`: the display's number of a key to press or release with XTEST, and what to know it again
  /// by.
  std::uint8_t keycode = 0;
  bool down = false;
  OwnMark mark{};
};

static_assert(std::is_trivially_copyable_v<TapRecord> && std::is_trivially_copyable_v<OwnerRecord>);

}  // namespace keyvora::x11
