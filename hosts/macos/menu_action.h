#pragma once

#import <Foundation/Foundation.h>

#include <functional>

/// The action of a menu row. The row's item carries it as its represented object; the application's
/// delegate runs it when the item is chosen. Main thread.
@interface KVMenuAction : NSObject
- (instancetype)initWithAction:(std::function<void()>)action;
/// May replace the menu, which releases this object.
- (void)run;
@end
