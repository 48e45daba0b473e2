#import "hosts/macos/diagnosis.h"

#import <AppKit/AppKit.h>
#import <Security/Security.h>

#include "hosts/macos/cf_ref.h"
#include "hosts/macos/strings.h"

namespace keyvora::macos {
namespace {

/// Who signed the bundle at this URL, and whether its content still matches the signature.
std::string signatureOf(NSURL* bundle) {
  SecStaticCodeRef made = nullptr;
  SecStaticCodeCreateWithPath((__bridge CFURLRef)bundle, kSecCSDefaultFlags, &made);
  const auto code = CFRef<SecStaticCodeRef>::adopt(made);
  if (!code) return "none";
  CFDictionaryRef copied = nullptr;
  SecCodeCopySigningInformation(code.get(), kSecCSSigningInformation, &copied);
  const auto information = CFRef<CFDictionaryRef>::adopt(copied);
  NSDictionary* known = (__bridge NSDictionary*)information.get();
  NSString* identifier = known[(__bridge NSString*)kSecCodeInfoIdentifier];
  if (identifier == nil) return "none";
  NSString* team = known[(__bridge NSString*)kSecCodeInfoTeamIdentifier];
  const OSStatus status = SecStaticCodeCheckValidity(code.get(), kSecCSDefaultFlags, nullptr);
  return utf8(identifier) + ", " + (team == nil ? "without a team" : "team " + utf8(team)) +
         (status == errSecSuccess ? ", valid" : ", not valid: error " + std::to_string(status));
}

}  // namespace

std::vector<platform::Finding> Diagnosis::findings(const std::filesystem::path& document) {
  static_cast<void>(document);
  return {};
}

std::vector<platform::Fact> Diagnosis::facts(std::string_view target) {
  @autoreleasepool {
    NSBundle* bundle = NSBundle.mainBundle;
    std::vector<platform::Fact> facts{{"macOS", utf8(NSProcessInfo.processInfo.operatingSystemVersionString)},
                                      {"bundle", filePath(bundle.bundleURL).string()},
                                      {"signature", signatureOf(bundle.bundleURL)}};
    NSArray<NSRunningApplication*>* running =
        [NSRunningApplication runningApplicationsWithBundleIdentifier:nsString(target)];
    if (running.count == 0) facts.push_back({"Excel", "is not running"});
    for (NSRunningApplication* application in running) {
      facts.push_back({"Excel", "process " + std::to_string(application.processIdentifier)});
    }
    return facts;
  }
}

}  // namespace keyvora::macos
