#pragma once

#import <Foundation/Foundation.h>

#include <functional>

/// What a row of a menu does. Its item carries it as the represented object; the application's delegate runs
/// it when the item is chosen. Main thread.
@interface KVMenuAction : NSObject
- (instancetype)initWithAction:(std::function<void()>)action;
/// May replace the menu, and with it this object.
- (void)run;
@end
