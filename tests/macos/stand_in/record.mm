#import "record.h"

#import <Foundation/Foundation.h>

namespace keyvora::stand_in {
namespace {

std::string recordPath() {
  NSArray<NSString*>* arguments = NSProcessInfo.processInfo.arguments;
  const NSUInteger option = [arguments indexOfObject:@"--record"];
  if (option != NSNotFound && option + 1 < arguments.count) {
    return static_cast<NSString*>(arguments[option + 1]).UTF8String;
  }
  NSString* path = NSProcessInfo.processInfo.environment[@"KEYVORA_STAND_IN_RECORD"];
  return path == nil ? "" : path.UTF8String;
}

}  // namespace

Record::Record(const char* path) : file_(std::fopen(path, "a")) {
  if (file_ == nullptr) file_ = stdout;
}

Record::~Record() {
  if (file_ != stdout) std::fclose(file_);
}

void Record::line(const std::string& text) {
  const std::chrono::duration<double, std::milli> since = std::chrono::steady_clock::now() - start_;
  std::fprintf(file_, "%.1f\t%s\n", since.count(), text.c_str());
  std::fflush(file_);
}

Record& record() {
  // Never destroyed: events may arrive until the process ends.
  static auto& kept = *new Record(recordPath().c_str());
  return kept;
}

}  // namespace keyvora::stand_in
