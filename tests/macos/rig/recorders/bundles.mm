// Bundles with a Mac's layout: Contents/Info.plist, Contents/Resources. GNUstep's own bundles are not
// changed.

#import <Foundation/Foundation.h>

#include <filesystem>
#include <string>

#include "tests/macos/rig/recorders/replace.h"

/// A bundle with a folder Contents, or the program's own folder. Has no instance variables, because objects
/// of GNUstep's class are changed to this class.
@interface KVMacBundle : NSBundle
@end

namespace {

bool hasContents(NSString* path) {
  BOOL directory = NO;
  NSString* contents = [path stringByAppendingPathComponent:@"Contents"];
  return [NSFileManager.defaultManager fileExistsAtPath:contents isDirectory:&directory] && directory;
}

/// The bundle of the running program: the folder that contains its Contents/MacOS, else the program's
/// folder.
NSString* programsBundle() {
  const auto folder = std::filesystem::read_symlink("/proc/self/exe").parent_path();
  const bool inBundle = folder.filename() == "MacOS" && folder.parent_path().filename() == "Contents";
  const auto bundle = inBundle ? folder.parent_path().parent_path() : folder;
  return [NSString stringWithUTF8String:bundle.c_str()];
}

}  // namespace

@implementation KVMacBundle

- (NSString*)bundlePath {
  return self == NSBundle.mainBundle ? programsBundle() : [super bundlePath];
}
- (NSURL*)bundleURL {
  return [NSURL fileURLWithPath:self.bundlePath];
}
- (NSString*)resourcePath {
  NSString* path = self.bundlePath;
  return hasContents(path) ? [path stringByAppendingPathComponent:@"Contents/Resources"] : path;
}
- (NSURL*)resourceURL {
  return [NSURL fileURLWithPath:self.resourcePath];
}
- (NSURL*)URLForResource:(NSString*)name withExtension:(NSString*)extension {
  NSString* path =
      [self.resourcePath stringByAppendingPathComponent:[name stringByAppendingPathExtension:extension]];
  return [NSFileManager.defaultManager fileExistsAtPath:path] ? [NSURL fileURLWithPath:path] : nil;
}
- (NSDictionary*)infoDictionary {
  NSString* contents = hasContents(self.bundlePath) ? @"Contents/Info.plist" : @"Info.plist";
  return
      [NSDictionary dictionaryWithContentsOfFile:[self.bundlePath stringByAppendingPathComponent:contents]];
}
- (NSString*)bundleIdentifier {
  return self.infoDictionary[@"CFBundleIdentifier"];
}

@end

namespace keyvora::rig {
namespace {
IMP initWithPath;
}

void replaceBundles() {
  object_setClass(NSBundle.mainBundle, KVMacBundle.class);
  initWithPath =
      replace(NSBundle.class, @selector(initWithPath:), [](id self, SEL selector, NSString* path) -> id {
        NSBundle* bundle = reinterpret_cast<id (*)(id, SEL, NSString*)>(initWithPath)(self, selector, path);
        if (bundle != nil && object_getClass(bundle) == NSBundle.class && hasContents(path)) {
          object_setClass(bundle, KVMacBundle.class);
        }
        return bundle;
      });
}

}  // namespace keyvora::rig
