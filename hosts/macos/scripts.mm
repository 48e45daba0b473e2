#import "hosts/macos/scripts.h"

#import <Foundation/Foundation.h>

#include "hosts/macos/strings.h"

namespace keyvora::macos {

platform::ScriptOutcome Scripts::run(const std::string& source) {
  @autoreleasepool {
    NSAppleScript* script = [[NSAppleScript alloc] initWithSource:nsString(source)];
    if (script == nil) return {false, std::nullopt};
    NSDictionary<NSString*, id>* error = nil;
    // Declared as never nil, but returns nil for a failure.
    NSAppleEventDescriptor* result = [script executeAndReturnError:&error];
    if (result != nil) return {true, std::nullopt};
    id message = error[NSAppleScriptErrorMessage];
    if (![message isKindOfClass:NSString.class]) return {false, std::nullopt};
    return {false, utf8(static_cast<NSString*>(message))};
  }
}

}  // namespace keyvora::macos
