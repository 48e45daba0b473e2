#include "tests/macos/rig/recorders/failures.h"

#include <map>
#include <mutex>

namespace keyvora::rig {
namespace {

struct Failures {
  std::mutex mutex;
  std::map<std::string, int, std::less<>> left;
};

Failures& shared() {
  static auto& failures = *new Failures;
  return failures;
}

}  // namespace

void failFrom(const std::string& call, int times) {
  const std::scoped_lock lock(shared().mutex);
  shared().left[call] = times;
}

bool fails(std::string_view call) {
  const std::scoped_lock lock(shared().mutex);
  const auto found = shared().left.find(call);
  if (found == shared().left.end() || found->second == 0) return false;
  if (found->second > 0) --found->second;
  return true;
}

}  // namespace keyvora::rig
