#pragma once

#import <AppKit/AppKit.h>

#include "platform/menu.h"

namespace keyvora::macos {

/// The menu as an NSMenu. AppKit's automatic enabling greys out rows without an action. Main thread.
NSMenu* render(const platform::Menu& menu);

}  // namespace keyvora::macos
