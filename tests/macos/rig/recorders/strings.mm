// String methods that GNUstep lacks, or that refuse what Foundation accepts.

#import <Foundation/Foundation.h>

#include <vector>

#include "tests/macos/rig/recorders/replace.h"

/// UTF-16 units with unpaired surrogates.
@interface KVUnitsString : NSString {
 @public
  std::vector<unichar> _units;
}
@end

@implementation KVUnitsString
- (NSUInteger)length {
  return _units.size();
}
- (unichar)characterAtIndex:(NSUInteger)index {
  return _units[index];
}
/// A lossy conversion replaces unconvertible characters.
- (NSData*)dataUsingEncoding:(NSStringEncoding)encoding allowLossyConversion:(BOOL)lossy {
  if (!lossy) return nil;
  NSMutableString* repaired = [NSMutableString string];
  for (const unichar unit : _units) {
    const unichar kept = unit >= 0xD800 && unit < 0xE000 ? 0xFFFD : unit;
    [repaired appendString:[NSString stringWithCharacters:&kept length:1]];
  }
  return [repaired dataUsingEncoding:encoding];
}
@end

@implementation NSString (KVRecorder)
- (BOOL)getBytes:(void*)buffer
         maxLength:(NSUInteger)maxLength
        usedLength:(NSUInteger*)usedLength
          encoding:(NSStringEncoding)encoding
           options:(NSStringEncodingConversionOptions)options
             range:(NSRange)range
    remainingRange:(NSRangePointer)remaining {
  NSData* data = [[self substringWithRange:range] dataUsingEncoding:encoding];
  if (data == nil || data.length > maxLength) return NO;
  [data getBytes:buffer length:data.length];
  if (usedLength != nullptr) *usedLength = data.length;
  return YES;
}
@end

namespace keyvora::rig {
namespace {
IMP stringWithCharacters;
}

void replaceStrings() {
  stringWithCharacters = replaceClassMethod(
      NSString.class, @selector(stringWithCharacters:length:),
      [](id self, SEL selector, const unichar* units, NSUInteger length) -> id {
        using Function = id (*)(id, SEL, const unichar*, NSUInteger);
        id made = reinterpret_cast<Function>(stringWithCharacters)(self, selector, units, length);
        if (made != nil) return made;
        auto* string = [[[KVUnitsString alloc] init] autorelease];
        string->_units.assign(units, units + length);
        return string;
      });
}

}  // namespace keyvora::rig
