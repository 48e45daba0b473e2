#pragma once

#import <AppKit/AppKit.h>

#include "platform/menu.h"

namespace keyvora::macos {

/// The menu as AppKit shows it: automatic enabling greys the rows without an action. Main thread.
NSMenu* render(const platform::Menu& menu);

}  // namespace keyvora::macos
