#import "hosts/macos/accessibility.h"

#import <ApplicationServices/ApplicationServices.h>
#import <Foundation/Foundation.h>

#include "hosts/macos/cf_ref.h"
#include "hosts/macos/strings.h"

namespace keyvora::macos {
namespace {

platform::AttributeValue valueOf(CFTypeRef value);

class AXElement final : public platform::Element {
 public:
  explicit AXElement(CFRef<AXUIElementRef> element) : element_(std::move(element)) {}

  platform::AttributeAnswer attribute(std::string_view name) override {
    @autoreleasepool {
      CFTypeRef copied = nullptr;
      const AXError error =
          AXUIElementCopyAttributeValue(element_.get(), (__bridge CFStringRef)nsString(name), &copied);
      const auto value = CFRef<CFTypeRef>::adopt(copied);
      return {error, valueOf(value.get())};
    }
  }

  std::int32_t perform(std::string_view action) override {
    @autoreleasepool {
      return AXUIElementPerformAction(element_.get(), (__bridge CFStringRef)nsString(action));
    }
  }

 private:
  CFRef<AXUIElementRef> element_;
};

/// The value as an element, or null if it is not one. Checks the type of the value first.
platform::ElementRef elementOf(CFTypeRef value) {
  if (value == nullptr || CFGetTypeID(value) != AXUIElementGetTypeID()) return nullptr;
  return std::make_shared<AXElement>(CFRef<AXUIElementRef>::retain(static_cast<AXUIElementRef>(value)));
}

platform::AttributeValue listOf(CFArrayRef array) {
  std::vector<platform::ElementRef> elements;
  const CFIndex count = CFArrayGetCount(array);
  elements.reserve(static_cast<std::size_t>(count));
  for (CFIndex index = 0; index < count; ++index) {
    auto element = elementOf(CFArrayGetValueAtIndex(array, index));
    if (!element) return platform::OtherValue{};
    elements.push_back(std::move(element));
  }
  return elements;
}

platform::AttributeValue valueOf(CFTypeRef value) {
  if (value == nullptr) return std::monostate{};
  const CFTypeID type = CFGetTypeID(value);
  if (type == AXUIElementGetTypeID()) return elementOf(value);
  if (type == CFArrayGetTypeID()) return listOf(static_cast<CFArrayRef>(value));
  if (type == CFStringGetTypeID()) return utf8((__bridge NSString*)value);
  return platform::OtherValue{};
}

}  // namespace

bool Accessibility::isTrusted() { return AXIsProcessTrusted(); }

bool Accessibility::isTrustedPrompting() {
  @autoreleasepool {
    NSDictionary* options = @{(__bridge NSString*)kAXTrustedCheckOptionPrompt : @YES};
    return AXIsProcessTrustedWithOptions((__bridge CFDictionaryRef)options);
  }
}

platform::ElementRef Accessibility::application(platform::ProcessIdentifier process) {
  return std::make_shared<AXElement>(CFRef<AXUIElementRef>::adopt(AXUIElementCreateApplication(process)));
}

}  // namespace keyvora::macos
