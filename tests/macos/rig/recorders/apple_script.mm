// AppleScript: records the source. A source with an `error` statement fails.

#import <Foundation/Foundation.h>

#include <string>

#include "tests/macos/rig/recorders/accessibility.h"
#include "tests/macos/rig/recorders/failures.h"
#include "tests/macos/rig/recorders/record.h"

NSString* const NSAppleScriptErrorMessage = @"NSAppleScriptErrorMessage";

namespace {

/// The text of an `error "…"` statement; nil if there is none.
NSString* errorIn(NSString* source) {
  const NSRange statement = [source rangeOfString:@"error \""];
  if (statement.location == NSNotFound) return nil;
  NSString* rest = [source substringFromIndex:NSMaxRange(statement)];
  const NSRange end = [rest rangeOfString:@"\""];
  return end.location == NSNotFound ? rest : [rest substringToIndex:end.location];
}

bool contains(NSString* text, NSString* part) { return [text rangeOfString:part].location != NSNotFound; }

}  // namespace

@interface KVAppleScript : NSAppleScript {
  NSString* _source;
}
@end

@implementation KVAppleScript
- (instancetype)initWithSource:(NSString*)source {
  if (keyvora::rig::fails("initWithSource:")) {
    [self release];
    return nil;
  }
  if ((self = [super init])) {
    _source = [source copy];
    keyvora::rig::count("script", 1);
  }
  return self;
}
- (void)dealloc {
  if (_source != nil) keyvora::rig::count("script", -1);
  [_source release];
  [super dealloc];
}
- (NSAppleEventDescriptor*)executeAndReturnError:(NSDictionary**)error {
  keyvora::rig::requireMainThread("executeAndReturnError:");
  keyvora::rig::record("script %s", keyvora::rig::inQuotes(_source.UTF8String).c_str());
  keyvora::rig::waitForTarget();
  if (contains(_source, @"error number")) {  // an error without a message
    if (error != nullptr) *error = @{@"NSAppleScriptErrorNumber" : @(-128)};
    return nil;
  }
  NSString* message = errorIn(_source);
  if (contains(_source, @"tell tell")) message = @"Expected expression but found \u201ctell\u201d.";
  if (message == nil) return [[[NSAppleEventDescriptor alloc] init] autorelease];
  if (error != nullptr) *error = @{NSAppleScriptErrorMessage : message};
  return nil;
}
@end

@implementation NSAppleScript (KVRecorder)
+ (instancetype)alloc {
  return NSAllocateObject(self == NSAppleScript.class ? KVAppleScript.class : self, 0, NSDefaultMallocZone());
}
@end
