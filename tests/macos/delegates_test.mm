// A framework asks a delegate which optional methods it has. A misspelt one is never called, without a
// warning from the compiler. This looks up every method of keyvora's delegates in their protocols.

#import <AppKit/AppKit.h>
#import <Sparkle/Sparkle.h>
#include <gtest/gtest.h>
#import <objc/runtime.h>

#include <map>
#include <set>
#include <string>
#include <vector>

#include "hosts/macos/application.h"
#include "hosts/macos/updates.h"

namespace keyvora::macos {
namespace {

/// Selectors of the class's own instance methods with their type encodings, except those that keyvora
/// itself calls.
std::map<std::string, std::string> methodsOf(const char* name) {
  std::map<std::string, std::string> methods;
  unsigned count = 0;
  Method* list = class_copyMethodList(objc_getClass(name), &count);
  for (unsigned index = 0; index < count; ++index) {
    const std::string selector = sel_getName(method_getName(list[index]));
    if (selector.starts_with("init") || selector.starts_with(".cxx_") || selector == "choose:") continue;
    methods[selector] = method_getTypeEncoding(list[index]);
  }
  free(list);
  return methods;
}

/// The encoding of an optional instance method of one of the protocols; empty if none has it.
std::string optionalMethod(const std::vector<Protocol*>& protocols, const std::string& selector) {
  for (Protocol* protocol : protocols) {
    const auto method = protocol_getMethodDescription(protocol, sel_registerName(selector.c_str()), NO, YES);
    if (method.name != nullptr) return method.types;
  }
  return {};
}

void expectAllIn(const std::vector<Protocol*>& protocols, const std::map<std::string, std::string>& methods) {
  for (const auto& [selector, types] : methods) {
    EXPECT_EQ(optionalMethod(protocols, selector), types) << selector;
  }
}

std::set<std::string> selectors(const std::map<std::string, std::string>& methods) {
  std::set<std::string> names;
  for (const auto& [selector, types] : methods) names.insert(selector);
  return names;
}

/// Compiles only if the protocols declare these methods: a cross-build checks that much.
[[maybe_unused]] void sendEach(id<NSApplicationDelegate> application,
                               id<SPUUpdaterDelegate, SPUStandardUserDriverDelegate> bridge,
                               SPUUpdater* updater, SUAppcastItem* item, SPUUserUpdateState* state,
                               NSError* error, NSNotification* notification) {
  [application applicationDidFinishLaunching:notification];
  [bridge updater:updater didFindValidUpdate:item];
  [bridge updaterDidNotFindUpdate:updater error:error];
  [bridge updater:updater didAbortWithError:error];
  [[maybe_unused]] const BOOL gentle = bridge.supportsGentleScheduledUpdateReminders;
  [bridge standardUserDriverShouldHandleShowingScheduledUpdate:item andInImmediateFocus:gentle];
  [bridge standardUserDriverWillHandleShowingUpdate:YES forUpdate:item state:state];
  [bridge standardUserDriverWillFinishUpdateSession];
}

// Keep the object files with the classes in this program.
TEST(Delegates, AreLinkedIn) {
  const Application application;
  const Updates updates;
  EXPECT_NE(objc_getClass("KVApplicationDelegate"), nil);
  EXPECT_NE(objc_getClass("KVUpdaterBridge"), nil);
}

TEST(Delegates, TheApplicationsHearsTheEndOfLaunching) {
  const auto methods = methodsOf("KVApplicationDelegate");
  EXPECT_EQ(selectors(methods), (std::set<std::string>{"applicationDidFinishLaunching:"}));
  expectAllIn({ @protocol (NSApplicationDelegate) }, methods);
}

TEST(Delegates, TheUpdatersHearsSparkle) {
  const auto methods = methodsOf("KVUpdaterBridge");
  EXPECT_EQ(selectors(methods),
            (std::set<std::string>{
                "updater:didFindValidUpdate:",
                "updaterDidNotFindUpdate:error:",
                "updater:didAbortWithError:",
                "supportsGentleScheduledUpdateReminders",
                "standardUserDriverShouldHandleShowingScheduledUpdate:andInImmediateFocus:",
                "standardUserDriverWillHandleShowingUpdate:forUpdate:state:",
                "standardUserDriverWillFinishUpdateSession",
            }));
  expectAllIn({ @protocol (SPUUpdaterDelegate), @protocol (SPUStandardUserDriverDelegate) }, methods);
}

}  // namespace
}  // namespace keyvora::macos
