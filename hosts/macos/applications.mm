#import "hosts/macos/applications.h"

#import <AppKit/AppKit.h>

#include "hosts/macos/strings.h"

namespace keyvora::macos {

std::vector<platform::ProcessIdentifier> Applications::running(std::string_view bundleIdentifier) {
  @autoreleasepool {
    std::vector<platform::ProcessIdentifier> processes;
    NSArray<NSRunningApplication*>* applications =
        [NSRunningApplication runningApplicationsWithBundleIdentifier:nsString(bundleIdentifier)];
    for (NSRunningApplication* application in applications) {
      processes.push_back(application.processIdentifier);
    }
    return processes;
  }
}

std::optional<std::string_view> Applications::frontmostBundleIdentifier() {
  @autoreleasepool {
    NSString* identifier = NSWorkspace.sharedWorkspace.frontmostApplication.bundleIdentifier;
    if (identifier == nil) return std::nullopt;
    // Copied into the reused buffer without an allocation: this runs for every key event.
    const NSUInteger capacity = [identifier maximumLengthOfBytesUsingEncoding:NSUTF8StringEncoding];
    frontmost_.resize(capacity);
    NSUInteger used = 0;
    [identifier getBytes:frontmost_.data()
               maxLength:capacity
              usedLength:&used
                encoding:NSUTF8StringEncoding
                 options:0
                   range:NSMakeRange(0, identifier.length)
          remainingRange:nil];
    frontmost_.resize(used);
    return frontmost_;
  }
}

void Workspace::openFile(const std::string& path) {
  @autoreleasepool {
    [NSWorkspace.sharedWorkspace openURL:fileURL(path)];
  }
}

void Workspace::openAddress(const std::string& address) {
  @autoreleasepool {
    NSURL* url = [NSURL URLWithString:nsString(address)];
    if (url != nil) [NSWorkspace.sharedWorkspace openURL:url];
  }
}

}  // namespace keyvora::macos
