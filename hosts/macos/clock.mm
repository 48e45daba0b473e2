#import "hosts/macos/clock.h"

#import <Foundation/Foundation.h>

#include "hosts/macos/strings.h"

namespace keyvora::macos {

std::string Clock::localTime() {
  @autoreleasepool {
    static NSDateFormatter* formatter = [] {
      NSDateFormatter* made = [[NSDateFormatter alloc] init];
      made.dateFormat = @"yyyy-MM-dd HH:mm:ss";
      return made;
    }();
    return utf8([formatter stringFromDate:[NSDate date]]);
  }
}

}  // namespace keyvora::macos
