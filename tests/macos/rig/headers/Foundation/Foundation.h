// GNUstep's Foundation, and what it lacks of Apple's: declared here, provided by the recorders.
#pragma once

#include_next <Foundation/Foundation.h>

#include <fcntl.h>

// gcc's are casts, which clang does not take in a conditional expression beside a selector.
#undef nil
#define nil nullptr
#undef Nil
#define Nil nullptr

#define NS_VALID_UNTIL_END_OF_SCOPE __attribute__((objc_precise_lifetime))

// The nearest that Linux has to a descriptor that only hears events.
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

@interface NSTimer (Apple)
@property(readonly, getter=isValid) BOOL valid;
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
