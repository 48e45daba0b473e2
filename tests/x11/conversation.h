#pragma once

#include <string>
#include <vector>

#include "hosts/posix/file_descriptor.h"

namespace keyvora::x11 {

/// A program that a test exchanges lines with. The destructor ends it by closing its input.
class Conversation {
 public:
  /// Throws when the program cannot be started.
  explicit Conversation(const std::vector<std::string>& command);
  ~Conversation();
  Conversation(const Conversation&) = delete;
  Conversation& operator=(const Conversation&) = delete;

  [[nodiscard]] int pid() const { return pid_; }

  void say(const std::string& line);

  /// Waits for this line, ignoring others; false when it did not come in time or the program ended.
  bool hears(const std::string& line);

  /// Closes its input and waits until it ends. Its exit status (a leak changes it in builds with the address
  /// sanitizer), or the negative number of the signal that ended it. At most once.
  int end();

  /// The line before the next "ready".
  std::string answer();

  /// What the program has written to standard error so far.
  std::string errors();

  /// All lines of the program so far.
  [[nodiscard]] const std::vector<std::string>& heard() const { return heard_; }

 private:
  bool readLine(std::string& line);

  int pid_ = -1;
  bool hasEnded_ = false;
  posix::FileDescriptor input_;
  posix::FileDescriptor output_;
  posix::FileDescriptor errors_;
  std::string pending_;
  std::vector<std::string> heard_;
};

}  // namespace keyvora::x11
