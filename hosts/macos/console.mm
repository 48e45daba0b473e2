#import "hosts/macos/console.h"

#import <Foundation/Foundation.h>

#include "hosts/macos/strings.h"

namespace keyvora::macos {

void Console::write(std::string_view record) {
  @autoreleasepool {
    NSLog(@"%@", nsString(record));
  }
}

}  // namespace keyvora::macos
