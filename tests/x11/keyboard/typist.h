#pragma once

#include <chrono>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>

namespace keyvora::x11 {

/// A user who types faster than any: no delay between events. Keys are virtual key codes.
class Typist {
 public:
  /// Which device the keys come from.
  enum class Device {
    /// The server's own keyboard: nothing tells these keys from a real one's.
    hardware,
    /// XTEST's keyboard, as programs that type use it.
    xtest,
  };

  Typist(const std::string& displayName, Device device);
  ~Typist();

  void press(std::uint16_t keyCode) { send(keyCode, true); }
  void release(std::uint16_t keyCode) { send(keyCode, false); }

  /// Presses and releases each key in turn.
  void tap(std::initializer_list<std::uint16_t> keyCodes);

  /// Waits until the server has taken all that was typed.
  void sync();

  /// How long a key is held before it repeats, and how long it takes from one repetition to the next.
  void setRepetition(std::chrono::milliseconds delay, std::chrono::milliseconds interval);

  /// Presses and releases a key while others are down.
  void chord(std::initializer_list<std::uint16_t> held, std::uint16_t keyCode);

 private:
  void send(std::uint16_t keyCode, bool down);

  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace keyvora::x11
