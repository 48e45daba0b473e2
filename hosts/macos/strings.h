#pragma once

#import <Foundation/Foundation.h>

#include <filesystem>
#include <string>
#include <string_view>

/// Conversion between the core's UTF-8 and the system's strings and URLs.
namespace keyvora::macos {

/// Never nil: text that is not UTF-8 is decoded as Latin-1.
NSString* nsString(std::string_view text);

/// Empty for nil; an unpaired surrogate, which UTF-8 cannot encode, is replaced.
std::string utf8(NSString* text);

NSURL* fileURL(const std::filesystem::path& path);

std::filesystem::path filePath(NSURL* url);

}  // namespace keyvora::macos
