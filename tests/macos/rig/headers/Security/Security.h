// The part of code signing that the macOS host uses.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef int32_t OSStatus;
typedef uint32_t SecCSFlags;
typedef const struct __attribute__((objc_bridge(NSURL))) __CFURL* CFURLRef;
typedef const struct __attribute__((objc_bridge(id))) __SecStaticCode* SecStaticCodeRef;
typedef const struct __attribute__((objc_bridge(id))) __SecRequirement* SecRequirementRef;

enum : OSStatus { errSecSuccess = 0, errSecCSUnsigned = -67062 };
enum : SecCSFlags { kSecCSDefaultFlags = 0, kSecCSSigningInformation = 2 };

extern const CFStringRef kSecCodeInfoIdentifier;
extern const CFStringRef kSecCodeInfoTeamIdentifier;

OSStatus SecStaticCodeCreateWithPath(CFURLRef path, SecCSFlags flags, SecStaticCodeRef* code);
OSStatus SecCodeCopySigningInformation(SecStaticCodeRef code, SecCSFlags flags, CFDictionaryRef* information);
OSStatus SecStaticCodeCheckValidity(SecStaticCodeRef code, SecCSFlags flags, SecRequirementRef requirement);

#ifdef __cplusplus
}
#endif
