// GNUstep's Foundation, with additional declarations of Apple's; the recorders implement them.
#pragma once

#include_next <Foundation/Foundation.h>

#include <fcntl.h>

// gcc's definitions are casts, which clang rejects in a conditional expression with a selector.
#undef nil
#define nil nullptr
#undef Nil
#define Nil nullptr

#define NS_VALID_UNTIL_END_OF_SCOPE __attribute__((objc_precise_lifetime))

// The closest equivalent on Linux to a descriptor for events only.
#define O_EVTONLY O_PATH

typedef NSString* NSNotificationName;

typedef NSUInteger NSDataReadingOptions;

@interface NSString (Apple)
- (BOOL)getBytes:(void*)buffer
         maxLength:(NSUInteger)maxLength
        usedLength:(NSUInteger*)usedLength
          encoding:(NSStringEncoding)encoding
           options:(NSStringEncodingConversionOptions)options
             range:(NSRange)range
    remainingRange:(NSRangePointer)remaining;
@end

@interface NSFileHandle (Apple)
- (BOOL)seekToEndReturningOffset:(unsigned long long*)offset error:(NSError**)error;
- (BOOL)writeData:(NSData*)data error:(NSError**)error;
- (BOOL)truncateAtOffset:(unsigned long long)offset error:(NSError**)error;
- (BOOL)closeAndReturnError:(NSError**)error;
@end

@interface NSFileManager (Apple)
- (NSArray<NSURL*>*)URLsForDirectory:(NSSearchPathDirectory)directory
                           inDomains:(NSSearchPathDomainMask)domains;
@end

@interface NSData (Apple)
+ (instancetype)dataWithContentsOfURL:(NSURL*)url
                              options:(NSDataReadingOptions)options
                                error:(NSError**)error;
@end

extern NSString* const NSAppleScriptErrorMessage;

@interface NSAppleScript (Apple)
- (instancetype)initWithSource:(NSString*)source;
- (NSAppleEventDescriptor*)executeAndReturnError:(NSDictionary<NSString*, id>**)error;
@end
