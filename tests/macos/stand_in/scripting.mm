// The script dictionary's commands: see stand_in.sdef.

#import <Foundation/Foundation.h>

#include "record.h"

/// `note "text"`: records the text.
@interface KVStandInNoteCommand : NSScriptCommand
@end

@implementation KVStandInNoteCommand

- (id)performDefaultImplementation {
  id text = self.directParameter;
  if (![text isKindOfClass:NSString.class]) {
    self.scriptErrorNumber = NSArgumentsWrongScriptError;
    self.scriptErrorString = @"note takes a text";
    return nil;
  }
  keyvora::stand_in::record().line(std::string("script ") + static_cast<NSString*>(text).UTF8String);
  return nil;
}

@end
