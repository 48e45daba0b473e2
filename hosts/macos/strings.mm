#import "hosts/macos/strings.h"

namespace keyvora::macos {

NSString* nsString(std::string_view text) {
  if (text.empty()) return @"";  // the data of an empty view may be null
  NSString* string = [[NSString alloc] initWithBytes:text.data()
                                              length:text.size()
                                            encoding:NSUTF8StringEncoding];
  if (string != nil) return string;
  // Latin-1 gives every byte a meaning, so this cannot fail.
  return [[NSString alloc] initWithBytes:text.data() length:text.size() encoding:NSISOLatin1StringEncoding];
}

std::string utf8(NSString* text) {
  if (text == nil) return {};
  NSData* data = [text dataUsingEncoding:NSUTF8StringEncoding allowLossyConversion:YES];
  return {static_cast<const char*>(data.bytes), data.length};
}

NSURL* fileURL(const std::filesystem::path& path) { return [NSURL fileURLWithPath:nsString(path.native())]; }

std::filesystem::path filePath(NSURL* url) { return utf8(url.path); }

}  // namespace keyvora::macos
