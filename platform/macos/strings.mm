#import "platform/macos/strings.h"

namespace keyvora::macos {

NSString* nsString(std::string_view text) {
  NSString* string = [[NSString alloc] initWithBytes:text.data()
                                              length:text.size()
                                            encoding:NSUTF8StringEncoding];
  if (string != nil) return string;
  NSData* data = [NSData dataWithBytes:text.data() length:text.size()];
  NSString* repaired = nil;
  [NSString stringEncodingForData:data
                  encodingOptions:@{
                    NSStringEncodingDetectionSuggestedEncodingsKey : @[ @(NSUTF8StringEncoding) ],
                    NSStringEncodingDetectionUseOnlySuggestedEncodingsKey : @YES,
                    NSStringEncodingDetectionAllowLossyKey : @YES,
                    NSStringEncodingDetectionLossySubstitutionKey : @"\uFFFD",
                  }
                  convertedString:&repaired
              usedLossyConversion:nil];
  return repaired != nil ? repaired : @"";
}

std::string utf8(NSString* text) {
  if (text == nil) return {};
  NSData* data = [text dataUsingEncoding:NSUTF8StringEncoding allowLossyConversion:YES];
  return {static_cast<const char*>(data.bytes), data.length};
}

NSURL* fileURL(const std::filesystem::path& path) { return [NSURL fileURLWithPath:nsString(path.native())]; }

std::filesystem::path filePath(NSURL* url) { return utf8(url.path); }

}  // namespace keyvora::macos
