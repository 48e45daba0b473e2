#include "tests/macos/rig/recorders/accessibility.h"

#import <ApplicationServices/ApplicationServices.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <memory>
#include <thread>

#include "tests/macos/rig/recorders/cf_object.h"
#include "tests/macos/rig/recorders/failures.h"
#include "tests/macos/rig/recorders/record.h"
#include "tests/macos/rig/recorders/window_server.h"

/// A counted string, since the result of a Copy function must be released too.
@interface KVCountedString : NSString {
  NSString* _text;
}
@end

@implementation KVCountedString
- (instancetype)initWithText:(NSString*)text {
  if ((self = [super init])) {
    _text = [text copy];
    keyvora::rig::count("copied text", 1);
  }
  return self;
}
- (void)dealloc {
  keyvora::rig::count("copied text", -1);
  [_text release];
  [super dealloc];
}
- (NSUInteger)length {
  return _text.length;
}
- (unichar)characterAtIndex:(NSUInteger)index {
  return [_text characterAtIndex:index];
}
@end

namespace keyvora::rig {
namespace {

/// An element of an application's tree.
struct Node {
  std::string title;
  std::vector<std::shared_ptr<Node>> children;
};

std::shared_ptr<Node>& menuBar() {
  static auto& bar = *new std::shared_ptr<Node>;
  return bar;
}

/// A reference to a node, or to an application.
class Element final : public CFObject {
 public:
  static constexpr auto name = "element";

  explicit Element(std::shared_ptr<Node> node) : CFObject(name), node(std::move(node)) {}

  [[nodiscard]] CFTypeID type() const override { return type_id::element; }

  /// None for the application itself.
  const std::shared_ptr<Node> node;
};

/// An array that owns its elements.
class Array final : public CFObject {
 public:
  static constexpr auto name = "array";

  explicit Array(std::vector<CFObject*> members) : CFObject(name), members(std::move(members)) {}

  [[nodiscard]] CFTypeID type() const override { return type_id::array; }

  const std::vector<CFObject*> members;

 private:
  void ended() override {
    for (CFObject* member : members) member->release();
  }
};

std::shared_ptr<Node> childOf(Node& parent, const std::string& title) {
  const auto found = std::ranges::find(parent.children, title, &Node::title);
  if (found != parent.children.end()) return *found;
  parent.children.push_back(std::make_shared<Node>(Node{title, {}}));
  return parent.children.back();
}

std::string text(CFStringRef string) { return [(NSString*)string UTF8String]; }

AXError copyTitle(const Node& node, CFTypeRef* value) {
  if (node.title.empty()) return kAXErrorNoValue;
  if (node.title.starts_with('#')) {
    *value = [[NSNumber alloc] initWithInt:std::atoi(node.title.c_str() + 1)];
  } else {
    *value = [[KVCountedString alloc] initWithText:[NSString stringWithUTF8String:node.title.c_str()]];
  }
  return kAXErrorSuccess;
}

AXError copyAttribute(const Element& element, const std::string& attribute, CFTypeRef* value) {
  std::this_thread::sleep_for(std::chrono::microseconds(50));
  if (!WindowServer::shared().isTrusted()) return kAXErrorAPIDisabled;
  if (fails(attribute)) return kAXErrorCannotComplete;
  if (element.node == nullptr) {
    if (attribute != "AXMenuBar") return kAXErrorAttributeUnsupported;
    if (menuBar() == nullptr) return kAXErrorNoValue;
    *value = new Element(menuBar());
    return kAXErrorSuccess;
  }
  if (attribute == "AXTitle") return copyTitle(*element.node, value);
  if (attribute != "AXChildren") return kAXErrorAttributeUnsupported;
  std::vector<CFObject*> members;
  for (const auto& child : element.node->children) members.push_back(new Element(child));
  *value = new Array(std::move(members));
  return kAXErrorSuccess;
}

std::atomic<std::chrono::milliseconds> hangs{};

}  // namespace

MenuTree& MenuTree::shared() {
  static auto& tree = *new MenuTree;
  return tree;
}

void MenuTree::add(const std::vector<std::string>& titles) {
  if (menuBar() == nullptr) menuBar() = std::make_shared<Node>();
  auto place = menuBar();
  for (std::size_t index = 0; index < titles.size(); ++index) {
    if (index > 0) place = childOf(*place, "");
    place = childOf(*place, titles[index]);
  }
}

void MenuTree::clear() { menuBar() = nullptr; }

void hangOnce(std::chrono::milliseconds time) { hangs = time; }

void waitForTarget() {
  const auto time = hangs.exchange({});
  if (time.count() == 0) return;
  record("the target hangs");
  std::this_thread::sleep_for(time);
}

}  // namespace keyvora::rig

using namespace keyvora::rig;

const CFStringRef kAXTrustedCheckOptionPrompt = (CFStringRef) @"AXTrustedCheckOptionPrompt";

Boolean AXIsProcessTrusted() {
  requireMainThread("AXIsProcessTrusted");
  record("AXIsProcessTrusted");
  return WindowServer::shared().isTrusted();
}

Boolean AXIsProcessTrustedWithOptions(CFDictionaryRef options) {
  requireMainThread("AXIsProcessTrustedWithOptions");
  NSDictionary* dictionary = (NSDictionary*)options;
  NSNumber* prompt = dictionary[(NSString*)kAXTrustedCheckOptionPrompt];
  record("AXIsProcessTrustedWithOptions prompt %d of %lu", prompt.boolValue, (unsigned long)dictionary.count);
  return WindowServer::shared().isTrusted();
}

CFTypeID AXUIElementGetTypeID() { return type_id::element; }

AXUIElementRef AXUIElementCreateApplication(pid_t process) {
  requireMainThread("AXUIElementCreateApplication");
  record("AXUIElementCreateApplication %d", process);
  return reinterpret_cast<AXUIElementRef>(new Element(nullptr));
}

AXError AXUIElementCopyAttributeValue(AXUIElementRef reference, CFStringRef attribute, CFTypeRef* value) {
  requireMainThread("AXUIElementCopyAttributeValue");
  const auto* element = use<Element>(reference, "AXUIElementCopyAttributeValue");
  return element == nullptr ? kAXErrorInvalidUIElement : copyAttribute(*element, text(attribute), value);
}

AXError AXUIElementPerformAction(AXUIElementRef reference, CFStringRef action) {
  requireMainThread("AXUIElementPerformAction");
  const auto* element = use<Element>(reference, "AXUIElementPerformAction");
  if (element == nullptr) return kAXErrorInvalidUIElement;
  record("perform %s on %s", text(action).c_str(),
         inQuotes(element->node == nullptr ? "" : element->node->title).c_str());
  waitForTarget();
  return kAXErrorSuccess;
}

CFIndex CFArrayGetCount(CFArrayRef reference) {
  const auto* array = use<Array>(reference, "CFArrayGetCount");
  return array == nullptr ? 0 : static_cast<CFIndex>(array->members.size());
}

const void* CFArrayGetValueAtIndex(CFArrayRef reference, CFIndex index) {
  const auto* array = use<Array>(reference, "CFArrayGetValueAtIndex");
  if (array == nullptr || index < 0 || index >= static_cast<CFIndex>(array->members.size())) {
    violation("CFArrayGetValueAtIndex out of range");
    return nullptr;
  }
  return array->members[static_cast<std::size_t>(index)];
}

CFTypeID CFArrayGetTypeID() { return type_id::array; }
