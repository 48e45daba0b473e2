#pragma once

#include <chrono>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>

namespace keyvora::x11 {

/// A user who types with no delay between events. Keys are virtual key codes.
class Typist {
 public:
  /// The device that sends the keys.
  enum class Device {
    /// The server's own keyboard: these keys look like real ones.
    hardware,
    /// XTEST's keyboard, which programs use for typing.
    xtest,
  };

  Typist(const std::string& displayName, Device device);
  ~Typist();

  void press(std::uint16_t keyCode) { send(keyCode, true); }
  void release(std::uint16_t keyCode) { send(keyCode, false); }

  /// Presses and releases each key in turn.
  void tap(std::initializer_list<std::uint16_t> keyCodes);

  /// Waits until the server has processed everything typed.
  void sync();

  /// The delay before a held key repeats, and the interval between repetitions.
  void setRepetition(std::chrono::milliseconds delay, std::chrono::milliseconds interval);

  /// Presses and releases a key while others are down.
  void chord(std::initializer_list<std::uint16_t> held, std::uint16_t keyCode);

 private:
  void send(std::uint16_t keyCode, bool down);

  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace keyvora::x11
