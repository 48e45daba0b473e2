#pragma once

#include <set>
#include <string>

#include "platform/console.h"

namespace keyvora::x11 {

/// Prints on the console what works on this machine and what does not, each notice once. Main thread.
class Notices {
 public:
  explicit Notices(platform::Console& console) : console_(console) {}

  /// `sentences` are for the user, without a line break.
  void say(const std::string& sentences) {
    if (said_.insert(sentences).second) console_.write("keyvora: " + sentences);
  }

 private:
  platform::Console& console_;
  std::set<std::string> said_;
};

}  // namespace keyvora::x11
