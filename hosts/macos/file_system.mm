#import "hosts/macos/file_system.h"

#import <Foundation/Foundation.h>

#include "hosts/macos/file_watch.h"
#include "hosts/macos/strings.h"

namespace keyvora::macos {
namespace {

std::optional<std::filesystem::path> firstDirectory(NSSearchPathDirectory directory) {
  @autoreleasepool {
    NSURL* first =
        [NSFileManager.defaultManager URLsForDirectory:directory inDomains:NSUserDomainMask].firstObject;
    if (first == nil) return std::nullopt;
    return filePath(first);
  }
}

}  // namespace

std::optional<std::filesystem::path> FileSystem::applicationSupportDirectory() {
  return firstDirectory(NSApplicationSupportDirectory);
}

std::optional<std::filesystem::path> FileSystem::libraryDirectory() {
  return firstDirectory(NSLibraryDirectory);
}

bool FileSystem::createDirectories(const std::filesystem::path& directory) {
  @autoreleasepool {
    return [NSFileManager.defaultManager createDirectoryAtURL:fileURL(directory)
                                  withIntermediateDirectories:YES
                                                   attributes:nil
                                                        error:nil];
  }
}

bool FileSystem::exists(const std::filesystem::path& path) {
  @autoreleasepool {
    return [NSFileManager.defaultManager fileExistsAtPath:nsString(path.native())];
  }
}

bool FileSystem::copy(const std::filesystem::path& from, const std::filesystem::path& to) {
  @autoreleasepool {
    return [NSFileManager.defaultManager copyItemAtURL:fileURL(from) toURL:fileURL(to) error:nil];
  }
}

platform::FileContents FileSystem::read(const std::filesystem::path& path) {
  @autoreleasepool {
    NSError* error = nil;
    NSData* data = [NSData dataWithContentsOfURL:fileURL(path) options:0 error:&error];
    if (data == nil) return {{}, utf8(error.localizedDescription)};
    return {std::string(static_cast<const char*>(data.bytes), data.length), std::nullopt};
  }
}

bool FileSystem::append(const std::filesystem::path& path, std::string_view bytes) {
  @autoreleasepool {
    NSFileHandle* file = [NSFileHandle fileHandleForWritingToURL:fileURL(path) error:nil];
    if (file == nil) return false;
    NSData* data = [NSData dataWithBytes:bytes.data() length:bytes.size()];
    unsigned long long end = 0;
    if ([file seekToEndReturningOffset:&end error:nil] && ![file writeData:data error:nil]) {
      [file truncateAtOffset:end error:nil];  // the next record must not follow a partial one
    }
    [file closeAndReturnError:nil];
    return true;
  }
}

bool FileSystem::replace(const std::filesystem::path& path, std::string_view bytes) {
  @autoreleasepool {
    NSData* data = [NSData dataWithBytes:bytes.data() length:bytes.size()];
    return [data writeToURL:fileURL(path) options:NSDataWritingAtomic error:nil];
  }
}

std::unique_ptr<platform::FileWatch> FileSystem::watch(const std::filesystem::path& path,
                                                       std::function<void()> handler) {
  return FileWatch::open(path, std::move(handler));
}

}  // namespace keyvora::macos
