#import "hosts/macos/updates.h"

#import <Sparkle/Sparkle.h>

#include "hosts/macos/guarded.h"
#include "hosts/macos/strings.h"

namespace {

keyvora::platform::UpdateItem itemOf(SUAppcastItem* item) {
  return {keyvora::macos::utf8(item.displayVersionString), keyvora::macos::utf8(item.versionString)};
}

}  // namespace

/// Forwards Sparkle's delegate calls to the core's delegate, which must outlive it.
@interface KVUpdaterBridge : NSObject <SPUUpdaterDelegate, SPUStandardUserDriverDelegate>
- (instancetype)initWithDelegate:(keyvora::platform::UpdaterDelegate*)delegate;
@end

@implementation KVUpdaterBridge {
 @private
  keyvora::platform::UpdaterDelegate* _delegate;
}

- (instancetype)initWithDelegate:(keyvora::platform::UpdaterDelegate*)delegate {
  if ((self = [super init])) _delegate = delegate;
  return self;
}

- (void)updater:(SPUUpdater*)updater didFindValidUpdate:(SUAppcastItem*)item {
  keyvora::macos::guarded([&] { self->_delegate->didFindValidUpdate(itemOf(item)); });
}

- (void)updaterDidNotFindUpdate:(SPUUpdater*)updater error:(NSError*)error {
  keyvora::macos::guarded(
      [&] { self->_delegate->didNotFindUpdate(keyvora::macos::utf8(error.localizedDescription)); });
}

- (void)updater:(SPUUpdater*)updater didAbortWithError:(NSError*)error {
  keyvora::macos::guarded(
      [&] { self->_delegate->didAbort(keyvora::macos::utf8(error.localizedDescription)); });
}

- (BOOL)supportsGentleScheduledUpdateReminders {
  return keyvora::macos::guarded(
      true, [self] { return self->_delegate->supportsGentleScheduledUpdateReminders(); });
}

- (BOOL)standardUserDriverShouldHandleShowingScheduledUpdate:(SUAppcastItem*)update
                                         andInImmediateFocus:(BOOL)immediateFocus {
  return keyvora::macos::guarded(true, [&] {
    return self->_delegate->shouldHandleShowingScheduledUpdate(itemOf(update), immediateFocus);
  });
}

- (void)standardUserDriverWillHandleShowingUpdate:(BOOL)handleShowingUpdate
                                        forUpdate:(SUAppcastItem*)update
                                            state:(SPUUserUpdateState*)state {
  keyvora::macos::guarded(
      [&] { self->_delegate->willHandleShowingUpdate(handleShowingUpdate, itemOf(update)); });
}

- (void)standardUserDriverWillFinishUpdateSession {
  keyvora::macos::guarded([&] { self->_delegate->willFinishUpdateSession(); });
}

@end

namespace keyvora::macos {
namespace {

class UpdaterController final : public platform::UpdaterController {
 public:
  UpdaterController(bool startingUpdater, platform::UpdaterDelegate& delegate)
      // The controller holds its delegates weakly.
      : bridge_([[KVUpdaterBridge alloc] initWithDelegate:&delegate]),
        controller_([[SPUStandardUpdaterController alloc] initWithStartingUpdater:startingUpdater
                                                                  updaterDelegate:bridge_
                                                               userDriverDelegate:bridge_]) {}

  // A probe calls these before the run loop with its autorelease pools has started.
  void startUpdater() override {
    @autoreleasepool {
      [controller_ startUpdater];
    }
  }

  void checkForUpdates() override {
    @autoreleasepool {
      [controller_ checkForUpdates:nil];
    }
  }

  void checkForUpdateInformation() override {
    @autoreleasepool {
      [controller_.updater checkForUpdateInformation];
    }
  }

 private:
  KVUpdaterBridge* bridge_;
  SPUStandardUpdaterController* controller_;
};

}  // namespace

std::unique_ptr<platform::UpdaterController> Updates::createController(bool startingUpdater,
                                                                       platform::UpdaterDelegate& delegate) {
  @autoreleasepool {
    return std::make_unique<UpdaterController>(startingUpdater, delegate);
  }
}

}  // namespace keyvora::macos
