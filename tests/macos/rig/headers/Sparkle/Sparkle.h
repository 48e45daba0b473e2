// The part of Sparkle's standard updater that the macOS host uses, and its delegate methods.
#pragma once

#import <AppKit/AppKit.h>

@class SPUUpdater;

@interface SUAppcastItem : NSObject
@property(copy, readonly) NSString* displayVersionString;
@property(copy, readonly) NSString* versionString;
@end

@interface SPUUserUpdateState : NSObject
@property(readonly) BOOL userInitiated;
@end

@protocol SPUUpdaterDelegate <NSObject>
@optional
- (void)updater:(SPUUpdater*)updater didFindValidUpdate:(SUAppcastItem*)item;
- (void)updaterDidNotFindUpdate:(SPUUpdater*)updater error:(NSError*)error;
- (void)updaterDidNotFindUpdate:(SPUUpdater*)updater;
- (void)updater:(SPUUpdater*)updater didAbortWithError:(NSError*)error;
@end

@protocol SPUStandardUserDriverDelegate <NSObject>
@optional
@property(readonly) BOOL supportsGentleScheduledUpdateReminders;
- (BOOL)standardUserDriverShouldHandleShowingScheduledUpdate:(SUAppcastItem*)update
                                         andInImmediateFocus:(BOOL)immediateFocus;
- (void)standardUserDriverWillHandleShowingUpdate:(BOOL)handleShowingUpdate
                                        forUpdate:(SUAppcastItem*)update
                                            state:(SPUUserUpdateState*)state;
- (void)standardUserDriverDidReceiveUserAttentionForUpdate:(SUAppcastItem*)update;
- (void)standardUserDriverWillFinishUpdateSession;
@end

@interface SPUUpdater : NSObject
- (void)checkForUpdateInformation;
@end

@interface SPUStandardUpdaterController : NSObject
- (instancetype)initWithStartingUpdater:(BOOL)startingUpdater
                        updaterDelegate:(id<SPUUpdaterDelegate>)updaterDelegate
                     userDriverDelegate:(id<SPUStandardUserDriverDelegate>)userDriverDelegate;
@property(readonly) SPUUpdater* updater;
- (void)startUpdater;
- (void)checkForUpdates:(id)sender;
@end
