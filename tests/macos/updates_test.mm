// Sparkle's delegate calls, forwarded to the core; nothing is fetched.

#import "hosts/macos/updates.h"

#import <Sparkle/Sparkle.h>
#include <gtest/gtest.h>
#import <objc/runtime.h>

#include <stdexcept>
#include <string>
#include <vector>

/// An item with the properties that the delegate calls read. Sparkle's own is created from a feed.
@interface KVTestUpdate : NSObject
@property(readonly) NSString* displayVersionString;
@property(readonly) NSString* versionString;
@end

@implementation KVTestUpdate
- (NSString*)displayVersionString {
  return @"1.4 \u03b2";
}
- (NSString*)versionString {
  return @"140";
}
@end

@protocol KVTestBridge <SPUUpdaterDelegate, SPUStandardUserDriverDelegate>
- (instancetype)initWithDelegate:(keyvora::platform::UpdaterDelegate*)delegate;
@end

namespace keyvora::macos {
namespace {

/// Records its calls; throws if requested.
class Heard final : public platform::UpdaterDelegate {
 public:
  void didFindValidUpdate(const platform::UpdateItem& item) override {
    note("found " + item.displayVersionString + " " + item.versionString);
  }
  void didNotFindUpdate(const std::string& error) override { note("none: " + error); }
  void didAbort(const std::string& error) override { note("aborted: " + error); }
  bool supportsGentleScheduledUpdateReminders() const override {
    if (throws) throw std::runtime_error("gentle");
    return answer;
  }
  bool shouldHandleShowingScheduledUpdate(const platform::UpdateItem& item, bool focus) const override {
    if (throws) throw std::runtime_error("should handle");
    asked.push_back(item.versionString + (focus ? " in focus" : " out of focus"));
    return answer;
  }
  void willHandleShowingUpdate(bool handles, const platform::UpdateItem& item) override {
    note(std::string(handles ? "handled " : "not handled ") + item.versionString);
  }
  void willFinishUpdateSession() override { note("finished"); }

  bool throws = false;
  bool answer = true;
  std::vector<std::string> calls;
  mutable std::vector<std::string> asked;

 private:
  void note(std::string call) {
    if (throws) throw std::runtime_error(call);
    calls.push_back(std::move(call));
  }
};

class UpdaterBridge : public testing::Test {
 protected:
  UpdaterBridge() {
    const Updates linked;  // keeps the object file with the class in this program
    Class type = objc_getClass("KVUpdaterBridge");
    bridge_ = [static_cast<id<KVTestBridge>>([type alloc]) initWithDelegate:&heard_];
    item_ = static_cast<SUAppcastItem*>(static_cast<id>([[KVTestUpdate alloc] init]));
    error_ = [NSError errorWithDomain:@"SUSparkleErrorDomain"
                                 code:1001
                             userInfo:@{NSLocalizedDescriptionKey : @"up to date"}];
  }

  void callEach() {
    [bridge_ updater:updater_ didFindValidUpdate:item_];
    [bridge_ updaterDidNotFindUpdate:updater_ error:error_];
    [bridge_ updater:updater_ didAbortWithError:error_];
    [bridge_ standardUserDriverWillHandleShowingUpdate:YES forUpdate:item_ state:state_];
    [bridge_ standardUserDriverWillHandleShowingUpdate:NO forUpdate:item_ state:state_];
    [bridge_ standardUserDriverWillFinishUpdateSession];
  }

  Heard heard_;
  id<KVTestBridge> bridge_;
  SPUUpdater* updater_ = nil;
  SUAppcastItem* item_;
  SPUUserUpdateState* state_ = nil;
  NSError* error_;
};

TEST_F(UpdaterBridge, HandsEachCallOn) {
  callEach();
  EXPECT_EQ(heard_.calls,
            (std::vector<std::string>{"found 1.4 \u03b2 140", "none: up to date", "aborted: up to date",
                                      "handled 140", "not handled 140", "finished"}));
}

TEST_F(UpdaterBridge, AnswersAsItsOwnerDoes) {
  for (const bool answer : {true, false}) {
    heard_.answer = answer;
    EXPECT_EQ(static_cast<bool>(bridge_.supportsGentleScheduledUpdateReminders), answer);
    EXPECT_EQ(static_cast<bool>([bridge_ standardUserDriverShouldHandleShowingScheduledUpdate:item_
                                                                          andInImmediateFocus:answer]),
              answer);
  }
  EXPECT_EQ(heard_.asked, (std::vector<std::string>{"140 in focus", "140 out of focus"}));
}

TEST_F(UpdaterBridge, AnOwnerThatThrowsLeavesTheUpdateToSparkle) {
  heard_.throws = true;
  EXPECT_NO_THROW(callEach());
  EXPECT_TRUE(bridge_.supportsGentleScheduledUpdateReminders);
  EXPECT_TRUE([bridge_ standardUserDriverShouldHandleShowingScheduledUpdate:item_ andInImmediateFocus:YES]);
}

}  // namespace
}  // namespace keyvora::macos
