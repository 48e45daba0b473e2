// On this system nothing is signed.

#import <Security/Security.h>

const CFStringRef kSecCodeInfoIdentifier = (__bridge CFStringRef) @"identifier";
const CFStringRef kSecCodeInfoTeamIdentifier = (__bridge CFStringRef) @"teamid";

OSStatus SecStaticCodeCreateWithPath(CFURLRef, SecCSFlags, SecStaticCodeRef* code) {
  *code = nullptr;
  return errSecCSUnsigned;
}

OSStatus SecCodeCopySigningInformation(SecStaticCodeRef, SecCSFlags, CFDictionaryRef* information) {
  *information = nullptr;
  return errSecCSUnsigned;
}

OSStatus SecStaticCodeCheckValidity(SecStaticCodeRef, SecCSFlags, SecRequirementRef) {
  return errSecCSUnsigned;
}
