#include "tests/macos/rig/recorders/cf_object.h"

#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <unordered_set>

#include "tests/macos/rig/recorders/record.h"

namespace keyvora::rig {
namespace {

struct Known {
  std::mutex mutex;
  std::unordered_set<const void*> objects;
};

Known& known() {
  static auto& shared = *new Known;
  return shared;
}

/// On a Mac these calls crash the process.
void requireObject(CFTypeRef object, const char* call) {
  if (object != nullptr) return;
  std::fprintf(stderr, "%s(NULL)\n", call);
  std::abort();
}

}  // namespace

CFObject::CFObject(const char* kind) : kind_(kind) {
  count(kind, 1);
  const std::scoped_lock lock(known().mutex);
  known().objects.insert(this);
}

void CFObject::retain() {
  if (references_++ < 1) violation("a retain of a dead %s", kind_);
}

void CFObject::release() {
  const int left = --references_;
  if (left < 0) violation("one release too many of a %s", kind_);
  if (left != 0) return;
  count(kind_, -1);
  ended();
}

CFObject* CFObject::find(CFTypeRef object) {
  const std::scoped_lock lock(known().mutex);
  if (!known().objects.contains(object)) return nullptr;
  return static_cast<CFObject*>(const_cast<void*>(object));
}

void useFailed(const char* call, const char* expected, const CFObject* found) {
  if (found == nullptr) {
    violation("%s: no %s at all", call, expected);
  } else {
    violation("%s: a %s%s, expected a %s", call, found->references() < 1 ? "dead " : "", found->kind(),
              expected);
  }
}

}  // namespace keyvora::rig

using keyvora::rig::CFObject;

const CFAllocatorRef kCFAllocatorDefault = nullptr;

CFTypeRef CFRetain(CFTypeRef object) {
  keyvora::rig::requireObject(object, "CFRetain");
  CFObject* ours = CFObject::find(object);
  if (ours != nullptr) {
    ours->retain();
  } else {
    [(id)object retain];
  }
  return object;
}

void CFRelease(CFTypeRef object) {
  keyvora::rig::requireObject(object, "CFRelease");
  CFObject* ours = CFObject::find(object);
  if (ours != nullptr) {
    ours->release();
  } else {
    [(id)object release];
  }
}

CFTypeID CFGetTypeID(CFTypeRef object) {
  keyvora::rig::requireObject(object, "CFGetTypeID");
  if (const CFObject* ours = CFObject::find(object)) return ours->type();
  const bool isString = [(id)object isKindOfClass:NSString.class];
  return isString ? keyvora::rig::type_id::string : keyvora::rig::type_id::other;
}

CFTypeID CFStringGetTypeID() { return keyvora::rig::type_id::string; }
