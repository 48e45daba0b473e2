// File calls that return an error where GNUstep's raise an exception, and the user's directories.

#import <Foundation/Foundation.h>

#include "tests/macos/rig/recorders/failures.h"
#include "tests/macos/rig/recorders/record.h"

namespace {

/// Runs the block and converts an exception to an error.
BOOL succeeds(NSError** error, void (^work)(void)) {
  try {
    work();
    return YES;
  } catch (NSException* exception) {
    if (error != nullptr) {
      *error = [NSError errorWithDomain:NSCocoaErrorDomain
                                   code:512
                               userInfo:@{NSLocalizedDescriptionKey : exception.reason}];
    }
    return NO;
  }
}

}  // namespace

@implementation NSFileHandle (KVRecorder)

- (BOOL)seekToEndReturningOffset:(unsigned long long*)offset error:(NSError**)error {
  return succeeds(error, ^{
    *offset = [self seekToEndOfFile];
  });
}

- (BOOL)writeData:(NSData*)data error:(NSError**)error {
  if (keyvora::rig::fails("writeData:error:")) {  // a full disk accepts a part
    [self writeData:[data subdataWithRange:NSMakeRange(0, data.length / 2)]];
    return NO;
  }
  return succeeds(error, ^{
    [self writeData:data];
  });
}

- (BOOL)truncateAtOffset:(unsigned long long)offset error:(NSError**)error {
  return succeeds(error, ^{
    [self truncateFileAtOffset:offset];
  });
}

- (BOOL)closeAndReturnError:(NSError**)error {
  return succeeds(error, ^{
    [self closeFile];
  });
}

@end

@implementation NSFileManager (KVRecorder)

- (NSArray*)URLsForDirectory:(NSSearchPathDirectory)directory inDomains:(NSSearchPathDomainMask)domains {
  if (domains != NSUserDomainMask || keyvora::rig::fails("URLsForDirectory:inDomains:")) return @[];
  NSString* library = [NSString stringWithFormat:@"%s/Library", getenv("HOME")];
  if (directory == NSLibraryDirectory) return @[ [NSURL fileURLWithPath:library] ];
  if (directory != NSApplicationSupportDirectory) return @[];
  return @[ [NSURL fileURLWithPath:[library stringByAppendingPathComponent:@"Application Support"]] ];
}

@end

@implementation NSData (KVRecorder)

+ (instancetype)dataWithContentsOfURL:(NSURL*)url options:(NSUInteger)options error:(NSError**)error {
  NSData* data = [self dataWithContentsOfFile:url.path];
  if (data != nil || error == nullptr) return data;
  NSString* reason = [NSString
      stringWithFormat:@"The file \u201c%@\u201d couldn\u2019t be opened because there is no such file.",
                       url.lastPathComponent];
  *error = [NSError errorWithDomain:NSCocoaErrorDomain
                               code:260
                           userInfo:@{NSLocalizedDescriptionKey : reason}];
  return nil;
}

@end
