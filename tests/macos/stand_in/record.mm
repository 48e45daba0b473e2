#import "record.h"

#import <Foundation/Foundation.h>

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace keyvora::stand_in {
namespace {

std::string recordPath() {
  NSArray<NSString*>* arguments = NSProcessInfo.processInfo.arguments;
  const NSUInteger option = [arguments indexOfObject:@"--record"];
  if (option != NSNotFound && option + 1 < arguments.count) {
    return static_cast<NSString*>(arguments[option + 1]).UTF8String;
  }
  const char* path = std::getenv("KEYVORA_STAND_IN_RECORD");
  return path == nullptr ? "" : path;
}

}  // namespace

Record::Record(std::string path) : path_(std::move(path)) {}

void Record::line(const std::string& text) {
  const std::chrono::duration<double, std::milli> since = std::chrono::steady_clock::now() - start_;
  std::FILE* file = std::fopen(path_.c_str(), "a");
  std::fprintf(file == nullptr ? stdout : file, "%.1f\t%s\n", since.count(), text.c_str());
  if (file != nullptr) std::fclose(file);
}

Record& record() {
  // Never destroyed: events may arrive until the process ends.
  static auto& kept = *new Record(recordPath());
  return kept;
}

}  // namespace keyvora::stand_in
