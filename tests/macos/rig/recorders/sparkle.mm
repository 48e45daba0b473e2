// Sparkle's standard updater. Like the real one, it calls its delegates and does not retain them.

#import <Sparkle/Sparkle.h>

#include <atomic>

#include "tests/macos/rig/recorders/record.h"
#include "tests/macos/rig/recorders/sparkle.h"

using keyvora::rig::Feed;
using keyvora::rig::record;
using keyvora::rig::requireMainThread;

namespace keyvora::rig {
namespace {

std::atomic<Feed> offered = Feed::update;
/// The updater whose check waits for an answer; not retained.
SPUUpdater* checking;

NSError* errorOf(NSInteger code, NSString* text) {
  return [NSError errorWithDomain:@"SUSparkleErrorDomain"
                             code:code
                         userInfo:@{NSLocalizedDescriptionKey : text}];
}

}  // namespace

void setFeed(Feed feed) { offered = feed; }

}  // namespace keyvora::rig

@implementation SUAppcastItem
- (NSString*)displayVersionString {
  return @"9.9";
}
- (NSString*)versionString {
  return @"99";
}
@end

@implementation SPUUserUpdateState
- (BOOL)userInitiated {
  return NO;
}
@end

@interface SPUUpdater () {
 @public
  id<SPUUpdaterDelegate> _delegate;
  BOOL _started;
}
- (void)answer;
@end

@implementation SPUUpdater
- (void)checkForUpdateInformation {
  requireMainThread("checkForUpdateInformation");
  record("checkForUpdateInformation%s", _started ? "" : ", not started");
  if (!_started) return;
  keyvora::rig::checking = self;
}

- (void)answer {
  const Feed feed = keyvora::rig::offered;
  if (feed == Feed::update) {
    auto* item = [[[SUAppcastItem alloc] init] autorelease];
    if ([_delegate respondsToSelector:@selector(updater:didFindValidUpdate:)]) {
      [_delegate updater:self didFindValidUpdate:item];
    }
    return;
  }
  const bool nothing = feed == Feed::nothing;
  NSError* error = nothing
                       ? keyvora::rig::errorOf(1001, @"You\u2019re up to date!")
                       : keyvora::rig::errorOf(2001, @"An error occurred in retrieving update information.");
  if (nothing && [_delegate respondsToSelector:@selector(updaterDidNotFindUpdate:error:)]) {
    [_delegate updaterDidNotFindUpdate:self error:error];
  }
  if ([_delegate respondsToSelector:@selector(updater:didAbortWithError:)]) {
    [_delegate updater:self didAbortWithError:error];
  }
}
@end

@interface SPUStandardUpdaterController () {
  SPUUpdater* _updater;
  id<SPUStandardUserDriverDelegate> _driver;  // not retained
}
@end

void keyvora::rig::answerCheck() {
  [checking answer];
  checking = nil;
}

@implementation SPUStandardUpdaterController
- (instancetype)initWithStartingUpdater:(BOOL)startingUpdater
                        updaterDelegate:(id<SPUUpdaterDelegate>)updaterDelegate
                     userDriverDelegate:(id<SPUStandardUserDriverDelegate>)userDriverDelegate {
  requireMainThread("SPUStandardUpdaterController");
  if ((self = [super init])) {
    record("updater controller, starting %d", startingUpdater);
    keyvora::rig::count("updater controller", 1);
    _updater = [[SPUUpdater alloc] init];
    _updater->_delegate = updaterDelegate;
    _driver = userDriverDelegate;
    if (startingUpdater) [self startUpdater];
  }
  return self;
}

- (void)dealloc {
  keyvora::rig::count("updater controller", -1);
  [_updater release];
  [super dealloc];
}

- (SPUUpdater*)updater {
  return _updater;
}

- (void)startUpdater {
  requireMainThread("startUpdater");
  record("startUpdater");
  _updater->_started = YES;
}

/// Plays a scheduled update: found, shown by the standard user interface, and closed.
- (void)checkForUpdates:(id)sender {
  requireMainThread("checkForUpdates:");
  record("checkForUpdates: %s", sender == nil ? "none" : object_getClassName(sender));
  auto* item = [[[SUAppcastItem alloc] init] autorelease];
  auto* state = [[[SPUUserUpdateState alloc] init] autorelease];
  [_updater answer];
  BOOL gentle = NO;
  if ([_driver respondsToSelector:@selector(supportsGentleScheduledUpdateReminders)]) {
    gentle = _driver.supportsGentleScheduledUpdateReminders;
  }
  record("gentle reminders %d", gentle);
  BOOL standard = YES;
  if ([_driver respondsToSelector:@selector(standardUserDriverShouldHandleShowingScheduledUpdate:
                                                                             andInImmediateFocus:)]) {
    standard = [_driver standardUserDriverShouldHandleShowingScheduledUpdate:item andInImmediateFocus:NO];
  }
  record("standard interface shows the update %d", standard);
  if ([_driver respondsToSelector:@selector(standardUserDriverWillHandleShowingUpdate:forUpdate:state:)]) {
    [_driver standardUserDriverWillHandleShowingUpdate:standard forUpdate:item state:state];
  }
  if ([_driver respondsToSelector:@selector(standardUserDriverWillFinishUpdateSession)]) {
    [_driver standardUserDriverWillFinishUpdateSession];
  }
}
@end
