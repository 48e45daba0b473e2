#import "hosts/macos/bundles.h"

#import <Foundation/Foundation.h>

#include "hosts/macos/strings.h"

/// A class in this code, by which the system finds the bundle that contains it.
@interface KVBundleFinder : NSObject
@end

@implementation KVBundleFinder
@end

namespace keyvora::macos {
namespace {

class FoundationBundle final : public platform::Bundle {
 public:
  explicit FoundationBundle(NSBundle* bundle) : bundle_(bundle) {}

  std::filesystem::path directory() const override {
    @autoreleasepool {
      return filePath(bundle_.bundleURL);
    }
  }

  std::optional<std::filesystem::path> resourceDirectory() const override {
    @autoreleasepool {
      return pathOf(bundle_.resourceURL);
    }
  }

  std::optional<std::filesystem::path> resource(std::string_view name,
                                                std::string_view extension) const override {
    @autoreleasepool {
      return pathOf([bundle_ URLForResource:nsString(name) withExtension:nsString(extension)]);
    }
  }

  std::optional<std::string> information(std::string_view key) const override {
    @autoreleasepool {
      id value = bundle_.infoDictionary[nsString(key)];
      if (![value isKindOfClass:NSString.class]) return std::nullopt;
      return utf8(static_cast<NSString*>(value));
    }
  }

  std::optional<std::string> identifier() const override {
    @autoreleasepool {
      NSString* text = bundle_.bundleIdentifier;
      if (text == nil) return std::nullopt;
      return utf8(text);
    }
  }

 private:
  static std::optional<std::filesystem::path> pathOf(NSURL* url) {
    if (url == nil) return std::nullopt;
    return filePath(url);
  }

  NSBundle* bundle_;
};

}  // namespace

Bundles::Bundles()
    : main_(std::make_unique<FoundationBundle>(NSBundle.mainBundle)),
      containing_(std::make_unique<FoundationBundle>([NSBundle bundleForClass:KVBundleFinder.class])) {}

Bundles::~Bundles() = default;

const platform::Bundle& Bundles::main() { return *main_; }

const platform::Bundle& Bundles::containing() { return *containing_; }

std::unique_ptr<platform::Bundle> Bundles::open(const std::filesystem::path& directory) {
  @autoreleasepool {
    NSBundle* bundle = [[NSBundle alloc] initWithURL:fileURL(directory)];
    if (bundle == nil) return nullptr;
    return std::make_unique<FoundationBundle>(bundle);
  }
}

}  // namespace keyvora::macos
